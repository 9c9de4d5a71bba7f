#pragma once

#include <cassert>
#include <type_traits>
#include <utility>

namespace QzXmlLib16
{

/// Intrusive pointer over AddRef and Release of T. Owns one count of the object it points to.
/// A new object has a count of 0, so the first CSmartPtr brings it to 1 and the last one destroys it; an object on the
/// stack must never be given to a CSmartPtr.
template <class T>
class CSmartPtr
{
public:
    CSmartPtr() noexcept = default;
    /// Takes one count of p. p may be null.
    CSmartPtr(T * p) : m_p(p) { AddRefIfSet(); }
    CSmartPtr(CSmartPtr const & other) : m_p(other.m_p) { AddRefIfSet(); }
    CSmartPtr(CSmartPtr && other) noexcept : m_p(other.m_p) { other.m_p = nullptr; }
    /// From a pointer to a class that converts to T.
    template <class U, class = std::enable_if_t<!std::is_same_v<U, T> && std::is_convertible_v<U *, T *>>>
    CSmartPtr(CSmartPtr<U> const & other) : m_p(other.Get())
    {
        AddRefIfSet();
    }
    template <class U, class = std::enable_if_t<!std::is_same_v<U, T> && std::is_convertible_v<U *, T *>>>
    CSmartPtr(CSmartPtr<U> && other) noexcept : m_p(std::exchange(other.m_p, nullptr))
    {
    }
    ~CSmartPtr()
    {
        if (m_p != nullptr)
            m_p->Release();
    }

    CSmartPtr & operator=(T * p)
    {
        // The new count comes first, so that assigning the object already held is safe.
        if (p != nullptr)
            p->AddRef();
        T * const pOld = m_p;
        m_p = p;
        if (pOld != nullptr)
            pOld->Release();
        return *this;
    }
    CSmartPtr & operator=(CSmartPtr const & other) { return *this = other.m_p; }
    CSmartPtr & operator=(CSmartPtr && other)
    {
        if (this != &other)
        {
            T * const pOld = m_p;
            m_p = other.m_p;
            other.m_p = nullptr;
            if (pOld != nullptr)
                pOld->Release();
        }
        return *this;
    }
    template <class U, class = std::enable_if_t<!std::is_same_v<U, T> && std::is_convertible_v<U *, T *>>>
    CSmartPtr & operator=(CSmartPtr<U> const & other)
    {
        return *this = static_cast<T *>(other.Get());
    }

    /// The raw pointer, without a check and without a count. All comparisons go through it.
    operator T *() const noexcept { return m_p; }
    T * Get() const noexcept { return m_p; }
    /// Requires a non-null pointer.
    T * operator->() const
    {
        assert(m_p != nullptr);
        return m_p;
    }
    T & operator*() const
    {
        assert(m_p != nullptr);
        return *m_p;
    }

private:
    template <class U>
    friend class CSmartPtr;

    void AddRefIfSet() const
    {
        if (m_p != nullptr)
            m_p->AddRef();
    }

    T * m_p = nullptr;
};

} // namespace QzXmlLib16
