// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_LOAN_H
#define DDSRMI_DDS_LOAN_H

#include <dds/dds.h>

#include <array>
#include <cstddef>

namespace org::opensplice::DDS_RMI {

/// Takes samples out of a reader, in the reader's own memory, until it is empty.
///
/// `use(const void* sample, const dds_sample_info_t&)` is called for every sample, also for those that only
/// tell of a writer's end (valid_data is false then, and only key members are set).
template <class Use>
void take_all(dds_entity_t reader, Use use)
{
    constexpr std::size_t batch =
        4; // returning a loan costs something for each sample that there is room for
    struct Loan
    {
        dds_entity_t reader;
        std::array<void*, batch> samples{};
        std::array<dds_sample_info_t, batch> infos{};
        dds_return_t count = 0;

        explicit Loan(dds_entity_t from) : reader(from)
        {
            count = dds_take(reader, samples.data(), infos.data(), batch, batch);
        }
        ~Loan()
        {
            if (count > 0)
                dds_return_loan(reader, samples.data(), count);
        }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;
    };

    bool more = true;
    while (more) {
        const Loan loan(reader);
        const auto count = loan.count > 0 ? static_cast<std::size_t>(loan.count) : 0;
        for (std::size_t i = 0; i < count; ++i)
            use(loan.samples[i], loan.infos[i]);
        more = count == batch;
    }
}

} // namespace org::opensplice::DDS_RMI

#endif
