// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/CallbackMethod.h"

namespace zeb {
namespace api {

CallbackMethod::~CallbackMethod() = default;

} // namespace api
} // namespace zeb
