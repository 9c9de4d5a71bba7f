#include "qzxmllib/binding/SharedText.h"

#include <atomic>
#include <cstdint>
#include <utility>

namespace QzXmlLib16
{

struct CSharedText::Body
{
    std::u16string strText;
    std::atomic<std::uint32_t> nHolders{1};
    /// Lives as long as the process and is not counted.
    bool bPermanent = false;
};

CSharedText::CSharedText(std::u16string const & strText) : m_pBody(strText.empty() ? nullptr : new Body{strText}) {}

CSharedText::CSharedText(CSharedText const & other) noexcept : m_pBody(other.m_pBody)
{
    if (m_pBody != nullptr && !m_pBody->bPermanent)
        m_pBody->nHolders.fetch_add(1, std::memory_order_relaxed);
}

CSharedText & CSharedText::operator=(CSharedText other) noexcept
{
    std::swap(m_pBody, other.m_pBody);
    return *this;
}

CSharedText::~CSharedText()
{
    if (m_pBody != nullptr && !m_pBody->bPermanent && m_pBody->nHolders.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete m_pBody;
}

std::u16string const & CSharedText::String() const noexcept
{
    static std::u16string const * const s_pEmpty = new std::u16string;
    return m_pBody != nullptr ? m_pBody->strText : *s_pEmpty;
}

CSharedText CSharedText::Any() noexcept
{
    // Never destroyed, like the empty text: objects may outlive the static objects of the library.
    static Body * const s_pAny = new Body{u"##any", {1}, true};
    return CSharedText(s_pAny);
}

} // namespace QzXmlLib16
