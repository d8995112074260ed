// SPDX-License-Identifier: Apache-2.0
#ifndef LEAST_FRAMEWORK_CALLBACKMETHOD_H
#define LEAST_FRAMEWORK_CALLBACKMETHOD_H

#include <string>

#include "zeb/api/data/KX_JSON.h"

namespace zeb {
namespace api {

class CallbackMethod
{
public:
    virtual ~CallbackMethod();
    virtual int Call(const data::KX_JSON& in, data::KX_JSON& out) = 0;
    virtual std::string GetName() const = 0;
    virtual data::KX_JSON GetDescription() const = 0;
};

} // namespace api
} // namespace zeb

#endif
