// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_FUZZ_METHOD_TABLE_H
#define TESTS_HOST_FUZZ_METHOD_TABLE_H

#include <stdexcept>
#include <string>

#include "method_stubs.h"

namespace host_test {

/// Methods that read their parameters in all ways that plug-ins do.
class FuzzMethods : public StubDirectory
{
public:
    FuzzMethods()
    {
        add("read", [](const Json& in, Json&) { return read(in.get_json_object("params")); });
        add("echo", [](const Json& in, Json& out) {
            out.set_json_object("result", in);
            return 0;
        });
        add("throw", [](const Json& in, Json&) -> int {
            throw std::invalid_argument(in.get_json_object("params").get_json_string("mac_addr"));
        });
    }

private:
    using Json = FunctionMethod::Json;

    static int read(const Json& params)
    {
        const int number = params.get_json_int("duration");
        const std::string text = params.get_json_string("mac_addr") + params.get_json_string("newCfg");
        return number / 2 + static_cast<int>(text.size());
    }
};

} // namespace host_test

#endif
