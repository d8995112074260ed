// SPDX-License-Identifier: Apache-2.0
#include "dds/qos.h"

#include <cstdint>
#include <new>

#include "dds/path_name.h"

namespace org::opensplice::DDS_RMI {

namespace {

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

} // namespace

Qos partition_qos(const std::string& partition)
{
    Qos qos = new_qos();
    dds_qset_partition1(qos.get(), partition.c_str());
    return qos;
}

Qos exchange_qos()
{
    Qos qos = new_qos();
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, 0);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    return qos;
}

void set_user_data(Qos& qos, const std::string& text)
{
    dds_qset_userdata(qos.get(), text.data(), text.size());
}

std::string user_data(const dds_qos_t& qos)
{
    void* data = nullptr;
    std::size_t size = 0;
    if (!dds_qget_userdata(&qos, &data, &size) || data == nullptr)
        return {};
    const std::unique_ptr<void, DdsMemoryDeleter> owned(data);
    return std::string(static_cast<const char*>(data), size);
}

std::optional<std::string> path_of(const dds_builtintopic_endpoint_t& endpoint)
{
    std::uint32_t count = 0;
    char** names = nullptr;
    if (!dds_qget_partition(endpoint.qos, &count, &names))
        return std::nullopt;
    std::optional<std::string> path;
    if (count == 1 && is_path_name(names[0], endpoint.participant_key))
        path = names[0];
    for (std::uint32_t i = 0; i < count; ++i)
        dds_free(names[i]);
    dds_free(names);
    return path;
}

} // namespace org::opensplice::DDS_RMI
