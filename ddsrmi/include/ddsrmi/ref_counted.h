// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_REF_COUNTED_H
#define DDSRMI_REF_COUNTED_H

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// A mutex whose operations return 0 on success, an errno value otherwise.
class SDKMutex
{
public:
    virtual ~SDKMutex();
    /// To be called once, before anything else.
    virtual int initialize() = 0;
    /// Waits for the mutex; it is not recursive.
    virtual int lock() = 0;
    /// By the thread that has locked it.
    virtual int unlock() = 0;
};

/// Where the mutexes of counted objects come from.
class SDKMutexFactory
{
public:
    /// A new, initialised mutex, which the caller deletes. Throws INTERNAL_ERROR when there is none to be
    /// had.
    static SDKMutex* createSDKMutex();
};

/// Base of everything that is held by shared_ptr: a count, guarded by a mutex of its own. Derive virtually.
class RefCounted
{
public:
    /// Starts with the count 0.
    RefCounted();
    virtual ~RefCounted();
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    /// One more reference. Any thread may count.
    void inc_refcount();
    /// One reference less; deletes the object, on this thread, when the count reaches 0.
    void dec_refcount();

private:
    SDKMutex* m_mutex;
    int m_refcount; // guarded by *m_mutex
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
