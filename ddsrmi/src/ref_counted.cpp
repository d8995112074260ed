// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/ref_counted.h"

#include <pthread.h>

#include <memory>

#include "ddsrmi/exceptions.h"

namespace org::opensplice::DDS_RMI {

namespace {

class PosixMutex final : public SDKMutex
{
public:
    ~PosixMutex() override { pthread_mutex_destroy(&m_mutex); }

    int initialize() override { return pthread_mutex_init(&m_mutex, nullptr); }
    int lock() override { return pthread_mutex_lock(&m_mutex); }
    int unlock() override { return pthread_mutex_unlock(&m_mutex); }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

} // namespace

SDKMutex::~SDKMutex() = default;

SDKMutex* SDKMutexFactory::createSDKMutex()
{
    std::unique_ptr<SDKMutex> mutex = std::make_unique<PosixMutex>();
    if (const int error = mutex->initialize(); error != 0)
        throw INTERNAL_ERROR("cannot initialise a mutex", error);
    return mutex.release();
}

RefCounted::RefCounted() : m_mutex(SDKMutexFactory::createSDKMutex()), m_refcount(0) {}

RefCounted::~RefCounted()
{
    delete m_mutex;
}

void RefCounted::inc_refcount()
{
    m_mutex->lock();
    ++m_refcount;
    m_mutex->unlock();
}

void RefCounted::dec_refcount()
{
    m_mutex->lock();
    const bool last = --m_refcount == 0;
    m_mutex->unlock();
    if (last)
        delete this;
}

} // namespace org::opensplice::DDS_RMI
