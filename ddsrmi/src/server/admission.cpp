// SPDX-License-Identifier: Apache-2.0
#include "server/admission.h"

#include <algorithm>

namespace org::opensplice::DDS_RMI {

namespace {

// So that the room left, however little, is shared by many.
constexpr std::uint64_t promises_in_what_is_free = 128;

} // namespace

std::uint64_t Admission::Pool::promise() const
{
    return (m_total - m_committed) / promises_in_what_is_free;
}

void Admission::Pool::extend(Account& account)
{
    const std::uint64_t target = std::max(account.wanted, account.arrived + promise());
    const std::uint64_t for_session =
        per_session() - std::min(per_session(), account.granted - account.released);
    const std::uint64_t more =
        std::min({target - std::min(target, account.granted), for_session, m_total - m_committed});
    account.granted += more;
    m_committed += more;
}

bool Admission::Pool::is_satisfied(const Account& account) const
{
    return account.granted >= account.wanted || account.granted - account.released >= per_session();
}

void Admission::Pool::release(Account& account, std::uint64_t amount)
{
    account.released += amount;
    m_committed -= amount;
}

void Admission::extend(Accounts& accounts)
{
    m_requests.extend(accounts.requests);
    m_bytes.extend(accounts.bytes);
}

void Admission::open(Accounts& accounts)
{
    const std::lock_guard lock(m_mutex);
    extend(accounts);
}

bool Admission::arrived(Accounts& accounts, std::uint64_t cost, bool& should_tell)
{
    const std::lock_guard lock(m_mutex);
    ++accounts.requests.arrived;
    accounts.bytes.arrived += cost;
    should_tell = false;
    for (const Account* account : {&accounts.requests, &accounts.bytes})
        if (account->arrived > account->granted)
            return false;
    const bool running_low =
        accounts.requests.granted - accounts.requests.arrived < m_requests.promise() / 2 ||
        accounts.bytes.granted - accounts.bytes.arrived < m_bytes.promise() / 2;
    if (!running_low)
        return true;
    const RoomUsed before = accounts.granted();
    extend(accounts);
    should_tell = accounts.requests.granted > before.requests || accounts.bytes.granted > before.bytes;
    return true;
}

void Admission::release(Accounts& accounts, std::uint64_t cost)
{
    const std::lock_guard lock(m_mutex);
    m_requests.release(accounts.requests, 1);
    m_bytes.release(accounts.bytes, cost);
    extend(accounts);
}

bool Admission::want(Accounts& accounts, RoomUsed wanted)
{
    const std::lock_guard lock(m_mutex);
    accounts.requests.wanted = std::max(accounts.requests.wanted, wanted.requests);
    accounts.bytes.wanted = std::max(accounts.bytes.wanted, wanted.bytes);
    extend(accounts);
    return m_requests.is_satisfied(accounts.requests) && m_bytes.is_satisfied(accounts.bytes);
}

void Admission::close(Accounts& accounts)
{
    const std::lock_guard lock(m_mutex);
    m_requests.close(accounts.requests);
    m_bytes.close(accounts.bytes);
    accounts = {};
}

} // namespace org::opensplice::DDS_RMI
