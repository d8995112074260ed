// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_DESCRIPTION_H
#define ZORBCTL_DESCRIPTION_H

#include <string>
#include <vector>

#include "client.h"

namespace zorbctl {

/// The method object of that name in what rpc.discover answers. Throws Failure when there is none.
Json find_method(const Json& document, const std::string& name);

/// The params object that KEY=VALUE texts make, each value typed as the description of its key says; null
/// when there are none. Throws Failure for what is not of that form or type.
Json params_from(const std::vector<std::string>& texts, const Json& method);

/// The types that a schema admits, for people: "integer or string".
std::string type_text(const Json& schema);

} // namespace zorbctl

#endif
