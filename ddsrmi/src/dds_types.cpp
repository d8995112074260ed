// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/dds_types.h"

#include <cstring>

#include "os_stdlib.h"

extern "C" char* os_strcpy(char* dst, const char* src)
{
    return static_cast<char*>(std::memcpy(dst, src, std::strlen(src) + 1));
}

namespace DDS {

String string_alloc(ULong length)
{
    const String text = new char[length + 1U];
    text[0] = '\0';
    return text;
}

String string_dup(const char* text)
{
    if (text == nullptr)
        return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<String>(std::memcpy(new char[size], text, size));
}

void string_free(String text)
{
    delete[] text;
}

ReadCondition::ReadCondition(const void* sample) : m_sample(sample) {}
ReadCondition::~ReadCondition() = default;

QueryCondition::QueryCondition() : ReadCondition(nullptr) {}
QueryCondition::~QueryCondition() = default;

} // namespace DDS
