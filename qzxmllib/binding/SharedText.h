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
    friend class CSharedTextStock;

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

/// Gives many copies of one text, counted in advance. For one thread.
class CSharedTextStock
{
public:
    explicit CSharedTextStock(CSharedText text = CSharedText()) noexcept : m_text(std::move(text)) {}
    CSharedTextStock(CSharedTextStock && other) noexcept
        : m_text(std::move(other.m_text)), m_nLeft(std::exchange(other.m_nLeft, 0))
    {
    }
    CSharedTextStock & operator=(CSharedTextStock other) noexcept
    {
        std::swap(m_text, other.m_text);
        std::swap(m_nLeft, other.m_nLeft);
        return *this;
    }
    ~CSharedTextStock()
    {
        // The text is still held here, so this is not the last count.
        if (m_nLeft != 0)
            m_text.m_pBody->nHolders.fetch_sub(m_nLeft, std::memory_order_acq_rel);
    }

    CSharedText Copy() noexcept
    {
        CSharedText::Body * const pBody = m_text.m_pBody;
        if (pBody == nullptr || pBody->bPermanent)
            return m_text;
        if (m_nLeft == 0)
        {
            pBody->nHolders.fetch_add(kAtOnce, std::memory_order_relaxed);
            m_nLeft = kAtOnce;
        }
        --m_nLeft;
        return CSharedText(pBody);
    }

private:
    static constexpr std::uint32_t kAtOnce = 256;

    CSharedText m_text;
    std::uint32_t m_nLeft = 0;
};

} // namespace QzXmlLib16
