// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_INTRUDER_CLIENT_H
#define TESTS_RMI_INTRUDER_CLIENT_H

namespace intruder {

/// Begins sessions as a client does, makes one call of "stamp" in each, and breaks each in another way.
/// Throws std::runtime_error when the server does not end it. Gives the number of calls that the server was
/// right to run.
unsigned break_sessions();

/// Makes calls of "stamp" in sessions that the server does not have, or has with somebody else. Throws when
/// the server does not refuse them.
void use_false_sessions(unsigned calls);

/// Says hello so many times, each time as if for a new session.
void flood_with_greetings(unsigned greetings);

} // namespace intruder

#endif
