// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_DISCOVERY_H
#define ZORBD_DISCOVERY_H

#include <string>
#include <vector>

#include "json/json_value.h"

namespace zeb::api {
class CallbackMethod;
}

namespace zorbd {

/// The OpenRPC method object of `method`. What `described` says, which may be null, is the beginning; what
/// the method says of itself goes before it. A description that is a string becomes its "description"; the
/// members of one that is an object stand in the method object as they are. Lets through what the method
/// throws. To be called on the thread that made the method: until the description has been copied it shares
/// the method's own objects, whose references are counted for one thread only.
strict_json::JsonValue describe_method(const std::string& name, const zeb::api::CallbackMethod& method,
                                       json_object* described);

/// The OpenRPC document of methods that have been described, in that order; `servers` are the addresses where
/// they are served.
std::string openrpc_document(const std::vector<std::string>& method_objects,
                             const std::vector<std::string>& servers);

} // namespace zorbd

#endif
