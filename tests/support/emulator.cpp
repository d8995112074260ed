// SPDX-License-Identifier: Apache-2.0
#include "emulator.h"

#include <elf.h>

#include <array>
#include <cstring>
#include <fstream>
#include <sstream>

namespace test_support {
namespace {

#ifdef TEST_EMULATOR
constexpr const char* emulator_command = TEST_EMULATOR;
#else
constexpr const char* emulator_command = "";
#endif

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, separator);) {
        words.push_back(word);
    }
    return words;
}

bool is_arm_program(const std::string& file)
{
    Elf32_Ehdr header{};
    std::array<char, sizeof(header)> bytes{};
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(bytes.data(), bytes.size())) {
        return false;
    }
    std::memcpy(&header, bytes.data(), sizeof(header));
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_machine == EM_ARM;
}

} // namespace

std::vector<std::string> under_emulator(const std::vector<std::string>& command)
{
    std::vector<std::string> emulated = split(emulator_command, '|');
    if (emulated.empty() || command.empty() || !is_arm_program(command.front())) {
        return command;
    }
    emulated.insert(emulated.end(), command.begin(), command.end());
    return emulated;
}

} // namespace test_support
