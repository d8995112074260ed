// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_DESCRIPTION_FILE_H
#define ZORBD_DESCRIPTION_FILE_H

#include <map>
#include <string>

#include "json/json_value.h"

namespace zorbd {

/// What stands of a plug-in's methods in the file beside its library: an OpenRPC document, whose references
/// to its own components are put in. It belongs to the thread that made it.
class DescriptionFile
{
public:
    /// The file that belongs to a library: libname.openrpc.json for libname.so.
    static std::string path_for(const std::string& library);

    /// Reads the file of that library. One that is missing or broken describes nothing, and is told of in the
    /// log.
    explicit DescriptionFile(const std::string& library);

    /// The OpenRPC method object of that name, still owned by this object; null when there is none.
    json_object* method(const std::string& name) const;

private:
    void read(const std::string& file);

    std::map<std::string, strict_json::JsonValue> m_methods;
};

} // namespace zorbd

#endif
