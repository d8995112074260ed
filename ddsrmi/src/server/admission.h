// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_ADMISSION_H
#define DDSRMI_SERVER_ADMISSION_H

#include <cstdint>
#include <mutex>

namespace org::opensplice::DDS_RMI {

/// Amounts of requests, and of bytes that they take up; see cost_of().
struct RoomUsed
{
    std::uint64_t requests;
    std::uint64_t bytes;
};

/// How much clients may have waiting at a server: all of them together, and each of them a quarter of that.
/// Room is promised to a session before its client sends, so that nothing which was sent need be refused. A
/// session that has little waiting is promised little.
class Admission
{
public:
    /// One session's account of one kind of room, counted from the session's beginning on.
    struct Account
    {
        std::uint64_t granted = 0;
        std::uint64_t arrived = 0;
        std::uint64_t released = 0;
        std::uint64_t wanted = 0;
    };
    struct Accounts
    {
        Account requests;
        Account bytes;

        RoomUsed granted() const { return {requests.granted, bytes.granted}; }
    };

    explicit Admission(RoomUsed total) : m_requests(total.requests), m_bytes(total.bytes) {}
    Admission(const Admission&) = delete;
    Admission& operator=(const Admission&) = delete;

    // All of these may be called on any thread; the accounts of one session on one thread at a time.

    /// The largest grant that one session may have at a time.
    RoomUsed per_session() const { return {m_requests.per_session(), m_bytes.per_session()}; }

    void open(Accounts& accounts);
    /// A request has come. False when it was not granted; `should_tell` when the client needs to hear of more
    /// room.
    bool arrived(Accounts& accounts, std::uint64_t cost, bool& should_tell);
    /// A request has ended; grants anew.
    void release(Accounts& accounts, std::uint64_t cost);
    /// The client needs that much. False when there will be more for it once others give room back.
    bool want(Accounts& accounts, RoomUsed wanted);
    bool is_satisfied(Accounts& accounts) { return want(accounts, {0, 0}); }
    void close(Accounts& accounts);

private:
    /// One kind of room.
    class Pool
    {
    public:
        explicit Pool(std::uint64_t total) : m_total(total) {}

        std::uint64_t per_session() const { return m_total / sessions_for_all; }
        /// What a session is promised beyond what it has sent: less, when there is less.
        std::uint64_t promise() const;
        void extend(Account& account);
        /// Whether the session has what it wants, or all that one may have.
        bool is_satisfied(const Account& account) const;
        void release(Account& account, std::uint64_t amount);
        void close(Account& account) { m_committed -= account.granted - account.released; }

    private:
        static constexpr std::uint64_t sessions_for_all = 4;

        const std::uint64_t m_total;
        std::uint64_t m_committed = 0; // the sum of granted less released
    };

    void extend(Accounts& accounts);

    std::mutex m_mutex;
    Pool m_requests; // guarded by m_mutex
    Pool m_bytes;    // guarded by m_mutex
};

} // namespace org::opensplice::DDS_RMI

#endif
