// SPDX-License-Identifier: Apache-2.0
#include "dds/qos.h"

#include <algorithm>
#include <new>
#include <vector>

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::size_t longest_path_name = 80;

struct DdsMemoryDeleter
{
    void operator()(void* memory) const noexcept { dds_free(memory); }
};

Qos new_qos()
{
    Qos qos(dds_create_qos());
    if (qos == nullptr)
        throw std::bad_alloc();
    return qos;
}

// Path names are used as partition names, in which some characters are wildcards.
bool is_path_character(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           character == '-';
}

class PartitionNames
{
public:
    explicit PartitionNames(const dds_qos_t& qos) { dds_qget_partition(&qos, &m_count, &m_names); }
    ~PartitionNames()
    {
        for (std::uint32_t i = 0; i < m_count; ++i)
            dds_free(m_names[i]);
        dds_free(m_names);
    }
    PartitionNames(const PartitionNames&) = delete;
    PartitionNames& operator=(const PartitionNames&) = delete;

    bool contain(const std::string& name) const
    {
        return std::any_of(m_names, m_names + m_count, [&](const char* one) { return name == one; });
    }

private:
    std::uint32_t m_count = 0;
    char** m_names = nullptr;
};

} // namespace

Qos partition_qos(const std::string& partition)
{
    Qos qos = new_qos();
    dds_qset_partition1(qos.get(), partition.c_str());
    return qos;
}

Qos exchange_qos(std::chrono::nanoseconds blocking_time)
{
    Qos qos = new_qos();
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, blocking_time.count());
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    return qos;
}

Qos announcement_qos(bool durable)
{
    Qos qos = exchange_qos(std::chrono::milliseconds(100));
    dds_qset_durability(qos.get(), durable ? DDS_DURABILITY_TRANSIENT_LOCAL : DDS_DURABILITY_VOLATILE);
    return qos;
}

void set_path_name(Qos& qos, const std::string& name)
{
    dds_qset_userdata(qos.get(), name.data(), name.size());
}

std::optional<std::string> path_name(const dds_qos_t& qos)
{
    void* data = nullptr;
    std::size_t size = 0;
    if (!dds_qget_userdata(&qos, &data, &size))
        return std::nullopt;
    const std::unique_ptr<void, DdsMemoryDeleter> owned(data);
    if (size == 0 || size > longest_path_name)
        return std::nullopt;
    std::string name(static_cast<const char*>(data), size);
    if (!std::all_of(name.begin(), name.end(), is_path_character))
        return std::nullopt;
    return name;
}

bool in_partition(const dds_qos_t& qos, const std::string& partition)
{
    return PartitionNames(qos).contain(partition);
}

} // namespace org::opensplice::DDS_RMI
