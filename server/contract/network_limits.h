// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_CONTRACT_NETWORK_LIMITS_H
#define SERVER_CONTRACT_NETWORK_LIMITS_H

#include <chrono>
#include <cstddef>

namespace varnel::limits {

constexpr std::size_t nodes = 1024;
constexpr std::size_t address_list_length = 32768;
constexpr std::size_t key_values_length = 2048;
constexpr std::size_t key_length = 32;
constexpr std::size_t value_length = 128;
constexpr std::size_t pairs = 64;
constexpr int highest_type = 255;
constexpr std::chrono::seconds longest_duration = std::chrono::hours(24 * 30);

} // namespace varnel::limits

#endif
