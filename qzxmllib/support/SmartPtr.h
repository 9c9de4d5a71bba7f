#pragma once

#include <cassert>
#include <cstddef>
#include <type_traits>

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
    CSmartPtr(std::nullptr_t) noexcept {}
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
    CSmartPtr & operator=(std::nullptr_t) { return *this = static_cast<T *>(nullptr); }
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

    /// The raw pointer, without a check and without a count.
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

    // Each pairing has its own exact match, so that neither the conversion to T * nor the rewritten operators of C++20
    // leave a comparison ambiguous.
    friend bool operator==(CSmartPtr const & a, CSmartPtr const & b) noexcept { return a.m_p == b.m_p; }
    friend bool operator!=(CSmartPtr const & a, CSmartPtr const & b) noexcept { return a.m_p != b.m_p; }
    friend bool operator==(CSmartPtr const & a, T const * b) noexcept { return a.m_p == b; }
    friend bool operator!=(CSmartPtr const & a, T const * b) noexcept { return a.m_p != b; }
    friend bool operator==(T const * a, CSmartPtr const & b) noexcept { return a == b.m_p; }
    friend bool operator!=(T const * a, CSmartPtr const & b) noexcept { return a != b.m_p; }
    friend bool operator==(CSmartPtr const & a, T * b) noexcept { return a.m_p == b; }
    friend bool operator!=(CSmartPtr const & a, T * b) noexcept { return a.m_p != b; }
    friend bool operator==(T * a, CSmartPtr const & b) noexcept { return a == b.m_p; }
    friend bool operator!=(T * a, CSmartPtr const & b) noexcept { return a != b.m_p; }
    friend bool operator==(CSmartPtr const & a, std::nullptr_t) noexcept { return a.m_p == nullptr; }
    friend bool operator!=(CSmartPtr const & a, std::nullptr_t) noexcept { return a.m_p != nullptr; }
    friend bool operator==(std::nullptr_t, CSmartPtr const & b) noexcept { return b.m_p == nullptr; }
    friend bool operator!=(std::nullptr_t, CSmartPtr const & b) noexcept { return b.m_p != nullptr; }

private:
    void AddRefIfSet() const
    {
        if (m_p != nullptr)
            m_p->AddRef();
    }

    T * m_p = nullptr;
};

/// Compares two pointers to different classes of one family by the object they point to.
template <class T, class U, class = std::enable_if_t<!std::is_same_v<T, U>>>
bool operator==(CSmartPtr<T> const & a, CSmartPtr<U> const & b) noexcept
{
    return a.Get() == b.Get();
}
template <class T, class U, class = std::enable_if_t<!std::is_same_v<T, U>>>
bool operator!=(CSmartPtr<T> const & a, CSmartPtr<U> const & b) noexcept
{
    return a.Get() != b.Get();
}

} // namespace QzXmlLib16
