// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_CONTRACT_REPLY_H
#define SERVER_CONTRACT_REPLY_H

#include <exception>
#include <string>
#include <vector>

namespace varnel {

/// Why an operation was refused; it then has changed nothing. The numbers are what clients see and never
/// change their meaning.
enum class Failure : int {
    malformed_address = -1,
    unknown_node = -2,
    node_exists = -3,
    not_commissioned = -4,
    already_commissioned = -5,
    malformed_text = -6,
    text_too_long = -7,
    empty_list = -8,
    too_many_nodes = -9,
    bad_duration = -10,
    bad_type = -11,
    not_a_test_node = -12,
    internal_error = -13,
};

struct FailureInfo
{
    Failure failure;
    const char* name;
    const char* meaning;
};

/// Every failure, from -1 downwards without a gap.
const std::vector<FailureInfo>& failures();

/// The name in failures(); empty for a number that is none.
std::string failure_name(int value);

/// The answer to one operation: the integer that travels to the client, and what there is to tell a person
/// beside it.
struct Reply
{
    int value = 0;
    std::string detail = {};
};

/// Thrown inside the network's operations, which turn it into a reply.
class Refusal : public std::exception
{
public:
    explicit Refusal(Failure failure) : m_failure(failure) {}

    const char* what() const noexcept override;
    Reply reply() const { return {static_cast<int>(m_failure)}; }

private:
    Failure m_failure;
};

} // namespace varnel

#endif
