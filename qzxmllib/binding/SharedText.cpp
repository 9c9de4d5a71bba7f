#include "qzxmllib/binding/SharedText.h"

namespace QzXmlLib16
{

CSharedText::CSharedText(std::u16string const & strText) : m_pBody(strText.empty() ? nullptr : new Body{strText}) {}

void CSharedText::Release() noexcept
{
    if (m_pBody->nHolders.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete m_pBody;
}

// The texts below are never destroyed: objects may outlive the static objects of the library.

std::u16string const & CSharedText::Empty() noexcept
{
    static std::u16string const * const s_pEmpty = new std::u16string;
    return *s_pEmpty;
}

CSharedText CSharedText::Any() noexcept
{
    static Body * const s_pAny = new Body{u"##any", {1}, true};
    return CSharedText(s_pAny);
}

} // namespace QzXmlLib16
