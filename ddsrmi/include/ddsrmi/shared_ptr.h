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
    /// Empty.
    shared_ptr() : m_object(nullptr) {}

    /// One more reference to `object`, which may be null. An object fresh from `new` has none yet, and
    /// belongs to its handles from then on.
    shared_ptr(T* object) : m_object(object) { hold(); }

    /// One more reference to the same object.
    shared_ptr(const shared_ptr& other) : m_object(other.m_object) { hold(); }

    /// Empty when the object is no T.
    template <class U>
    shared_ptr(const shared_ptr<U>& other) : m_object(dynamic_cast<T*>(other.get()))
    {
        hold();
    }

    /// Drops its reference; the last one deletes the object.
    virtual ~shared_ptr() { drop(m_object); }

    /// Takes a reference to the other's object, then drops its own one.
    shared_ptr& operator=(const shared_ptr& other)
    {
        if (this != &other)
            reset(other.m_object);
        return *this;
    }

    /// Drops its reference; empty afterwards.
    void reset() { reset(nullptr); }

    /// Takes a reference to `object`, then drops its own one.
    void reset(T* object)
    {
        T* const previous = m_object;
        m_object = object;
        hold();
        drop(previous);
    }

    /// The object, which must be there.
    T* operator->() const { return m_object; }

    /// The object, still owned by its handles; null when empty.
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
