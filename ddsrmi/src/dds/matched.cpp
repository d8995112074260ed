// SPDX-License-Identifier: Apache-2.0
#include "dds/matched.h"

#include <algorithm>

namespace org::opensplice::DDS_RMI {

namespace {

template <class Get>
std::vector<dds_instance_handle_t> all_of(dds_entity_t endpoint, Get get)
{
    std::vector<dds_instance_handle_t> handles;
    dds_return_t count = get(endpoint, nullptr, 0);
    do {
        handles.resize(static_cast<std::size_t>(std::max(count, 0)));
        count = get(endpoint, handles.data(), handles.size());
    } while (count > 0 && static_cast<std::size_t>(count) > handles.size());
    handles.resize(static_cast<std::size_t>(std::max(count, 0)));
    std::sort(handles.begin(), handles.end());
    return handles;
}

} // namespace

std::vector<dds_instance_handle_t> matched_writers(dds_entity_t reader)
{
    return all_of(reader, dds_get_matched_publications);
}

std::vector<dds_instance_handle_t> matched_readers(dds_entity_t writer)
{
    return all_of(writer, dds_get_matched_subscriptions);
}

} // namespace org::opensplice::DDS_RMI
