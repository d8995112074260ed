// SPDX-License-Identifier: Apache-2.0

// Answers raw requests with 0, until its standard input ends.

#include <atomic>
#include <iostream>
#include <thread>

#include "raw.h"
#include "raw_exchange.h"

namespace {

void answer_all(const bench::RawEnd& end)
{
    void* samples[32] = {};
    dds_sample_info_t infos[32];
    const dds_return_t count = dds_take(end.reader(), samples, infos, 32, 32);
    for (dds_return_t i = 0; i < count; ++i) {
        if (!infos[i].valid_data)
            continue;
        const Raw_Reply reply{static_cast<const Raw_Request*>(samples[i])->number, 0};
        dds_write(end.writer(), &reply);
    }
    if (count > 0)
        dds_return_loan(end.reader(), samples, count);
}

} // namespace

int main()
{
    const bench::RawEnd end(bench::RawEnd::Side::server);
    std::atomic<bool> stopped{false};
    std::thread worker([&] {
        while (!stopped) {
            end.wait_for_data();
            answer_all(end);
        }
    });
    std::cout << "ready" << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    stopped = true;
    end.wake();
    worker.join();
}
