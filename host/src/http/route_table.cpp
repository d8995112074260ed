// SPDX-License-Identifier: Apache-2.0
#include "http/route_table.h"

#include <algorithm>

namespace zorbd {
namespace {

/// Whoever can be asked with GET can be asked with HEAD.
bool takes(const Route& route, std::string_view method)
{
    return route.method == method || (method == "HEAD" && route.method == "GET");
}

} // namespace

const Route* RouteTable::find(std::string_view method, std::string_view path) const
{
    const auto found = std::find_if(m_routes.begin(), m_routes.end(), [&](const Route& route) {
        return route.path == path && takes(route, method);
    });
    return found == m_routes.end() ? nullptr : &*found;
}

std::string RouteTable::methods_of(std::string_view path) const
{
    std::string methods;
    for (const Route& route : m_routes) {
        if (route.path != path)
            continue;
        methods += (methods.empty() ? "" : ", ") + route.method;
        if (takes(route, "HEAD"))
            methods += ", HEAD";
    }
    return methods;
}

} // namespace zorbd
