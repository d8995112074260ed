// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PARAM_CHECK_H
#define ZORBD_PARAM_CHECK_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "json/json_value.h"

namespace zorbd {

/// Checks the parameters of calls against what a method's description says of them. It never changes, and any
/// number of threads may use it.
class ParamCheck
{
public:
    /// A text that is matched against a pattern may have this many characters at most, whatever its schema
    /// allows: the time and the stack that matching takes grow with the text.
    static constexpr int longest_matched_text = 1024;

    /// `params` is the array of that name of an OpenRPC method object, without references. Throws
    /// std::invalid_argument, which names the parameter, when it cannot be used.
    explicit ParamCheck(json_object* params);
    ~ParamCheck();
    ParamCheck(const ParamCheck&) = delete;
    ParamCheck& operator=(const ParamCheck&) = delete;

    /// Gives parameters that came by position their names, and checks them. What is wrong with them, if
    /// anything: it names the parameter. `request` is a request object, owned by the caller.
    std::optional<std::string> apply(json_object* request) const;

private:
    struct Param;

    std::optional<std::string> name_positions(json_object* request) const;
    std::optional<std::string> check_named(json_object* params) const;
    const Param* find(const std::string& name) const;
    std::string names() const;

    std::vector<std::unique_ptr<const Param>> m_params;
};

} // namespace zorbd

#endif
