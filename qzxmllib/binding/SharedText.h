#pragma once

#include "qzxmllib/support/Export.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>

namespace QzXmlLib16
{

/// Text that never changes and that many objects hold together, such as the namespace of all elements of a tree.
class QZXMLLIB_API CSharedText
{
public:
    /// Empty.
    CSharedText() noexcept : m_pBody(nullptr) {}
    explicit CSharedText(std::u16string const & strText);
    CSharedText(CSharedText const & other) noexcept : m_pBody(other.m_pBody)
    {
        if (m_pBody != nullptr && !m_pBody->bPermanent)
            m_pBody->nHolders.fetch_add(1, std::memory_order_relaxed);
    }
    CSharedText(CSharedText && other) noexcept : m_pBody(std::exchange(other.m_pBody, nullptr)) {}
    CSharedText & operator=(CSharedText other) noexcept
    {
        std::swap(m_pBody, other.m_pBody);
        return *this;
    }
    ~CSharedText()
    {
        if (m_pBody != nullptr && !m_pBody->bPermanent)
            Release();
    }

    /// Valid as long as any holder of the text lives.
    std::u16string const & String() const noexcept { return m_pBody != nullptr ? m_pBody->strText : Empty(); }
    bool IsEmpty() const noexcept { return m_pBody == nullptr; }

    /// The namespace list "##any", which costs no count.
    static CSharedText Any() noexcept;

private:
    struct Body
    {
        std::u16string strText;
        std::atomic<std::uint32_t> nHolders{1};
        /// Lives as long as the process and is not counted.
        bool bPermanent = false;
    };

    explicit CSharedText(Body * pBody) noexcept : m_pBody(pBody) {}

    void Release() noexcept;
    static std::u16string const & Empty() noexcept;

    Body * m_pBody; ///< null for the empty text
};

} // namespace QzXmlLib16
