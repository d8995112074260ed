// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SHARED_PTR_H
#define DDSRMI_SHARED_PTR_H

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// A counted reference to an object derived from RefCounted. One handle belongs to one thread at a time;
/// handles on the same object may be used on different threads.
template <class T>
class shared_ptr
{
public:
    shared_ptr() : m_object(nullptr) {}

    shared_ptr(T* object) : m_object(object) { hold(); }

    shared_ptr(const shared_ptr& other) : m_object(other.m_object) { hold(); }

    /// Empty when the object is no T.
    template <class U>
    shared_ptr(const shared_ptr<U>& other) : m_object(dynamic_cast<T*>(other.get()))
    {
        hold();
    }

    virtual ~shared_ptr() { drop(m_object); }

    shared_ptr& operator=(const shared_ptr& other)
    {
        if (this != &other)
            reset(other.m_object);
        return *this;
    }

    void reset() { reset(nullptr); }

    void reset(T* object)
    {
        T* const previous = m_object;
        m_object = object;
        hold();
        drop(previous);
    }

    T* operator->() const { return m_object; }

    T* get() const { return m_object; }

private:
    void hold()
    {
        if (m_object != nullptr)
            m_object->inc_refcount();
    }

    static void drop(T* object)
    {
        if (object != nullptr)
            object->dec_refcount();
    }

    T* m_object;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
