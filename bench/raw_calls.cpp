// SPDX-License-Identifier: Apache-2.0
#include "raw_calls.h"

#include "call_texts.h"
#include "raw.h"
#include "server_process.h"

namespace bench {

RawCalls::RawCalls() : m_server(start_server({RAW_SERVER})), m_end(RawEnd::Side::client)
{
    m_end.wait_for_peer();
    m_receiver = std::thread([this] {
        while (!m_stopped) {
            m_end.wait_for_data();
            take_replies();
        }
    });
}

RawCalls::~RawCalls()
{
    m_stopped = true;
    m_end.wake();
    m_receiver.join();
    end_server(m_server);
}

void RawCalls::start()
{
    char mac_addr[] = MAC_ADDR;
    char config[] = CONFIG;
    const Raw_Request request{++m_last_number, mac_addr, config};
    dds_write(m_end.writer(), &request);
}

void RawCalls::take_replies()
{
    void* samples[32] = {};
    dds_sample_info_t infos[32];
    const dds_return_t count = dds_take(m_end.reader(), samples, infos, 32, 32);
    for (dds_return_t i = 0; i < count; ++i)
        if (infos[i].valid_data)
            replies().reply_came();
    if (count > 0)
        dds_return_loan(m_end.reader(), samples, count);
}

} // namespace bench
