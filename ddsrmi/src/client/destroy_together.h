// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_DESTROY_TOGETHER_H
#define DDSRMI_CLIENT_DESTROY_TOGETHER_H

#include <exception>
#include <thread>
#include <utility>
#include <vector>

namespace org::opensplice::DDS_RMI {

/// Destroys things whose destruction waits, all at the same time; returns when the last has gone.
template <class Thing>
void destroy_together(std::vector<Thing> things) noexcept
{
    std::vector<std::thread> threads;
    try {
        threads.reserve(things.size());
        for (Thing& thing : things)
            threads.emplace_back([gone = std::move(thing)]() mutable { const Thing last = std::move(gone); });
    } catch (const std::exception&) {
        things.clear(); // without memory or threads, one after the other
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace org::opensplice::DDS_RMI

#endif
