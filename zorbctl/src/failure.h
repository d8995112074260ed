// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_FAILURE_H
#define ZORBCTL_FAILURE_H

#include <stdexcept>
#include <string>

#include "exit_code.h"

namespace zorbctl {

/// Ends the command with a message and a code.
class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};

} // namespace zorbctl

#endif
