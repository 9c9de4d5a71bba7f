#pragma once

#include "qzxmllib/support/Export.h"

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace QzXmlLib16
{

/// Text of an object in a tree of open content. It lies in the memory of the tree; who asks for a string object makes
/// one, which stays with it. Any number of threads may ask at once.
class QZXMLLIB_API CTreeText
{
public:
    CTreeText() noexcept = default;
    explicit CTreeText(std::u16string_view text);
    /// Text that fill(pointer to the room) writes, so many code units.
    template <class F>
    CTreeText(std::size_t nUnits, F const & fill) : m_pUnits(Allocate(nUnits)), m_nUnits(nUnits)
    {
        if (nUnits != 0)
            fill(m_pUnits);
    }
    CTreeText(CTreeText const & other) : CTreeText(other.View()) {}
    CTreeText(CTreeText && other) noexcept
        : m_pUnits(std::exchange(other.m_pUnits, nullptr)), m_nUnits(std::exchange(other.m_nUnits, 0)),
          m_pString(other.m_pString.exchange(nullptr))
    {
    }
    CTreeText & operator=(CTreeText other) noexcept
    {
        std::swap(m_pUnits, other.m_pUnits);
        std::swap(m_nUnits, other.m_nUnits);
        other.m_pString = m_pString.exchange(other.m_pString);
        return *this;
    }
    ~CTreeText()
    {
        if (m_pUnits != nullptr)
            Free();
    }

    std::u16string_view View() const noexcept { return {m_pUnits, m_nUnits}; }
    /// Valid until the text is assigned to or destroyed.
    std::u16string const & String() const
    {
        std::u16string const * const pString = m_pString.load(std::memory_order_acquire);
        return pString != nullptr ? *pString : MakeString();
    }

private:
    static char16_t * Allocate(std::size_t nUnits);
    void Free() noexcept;
    std::u16string const & MakeString() const;

    char16_t * m_pUnits = nullptr; ///< null for the empty text
    std::size_t m_nUnits = 0;
    mutable std::atomic<std::u16string *> m_pString{nullptr};
};

} // namespace QzXmlLib16
