#include "qzxmllib/binding/TreeText.h"

#include "qzxmllib/binding/TreeMemory.h"

#include <memory>

namespace QzXmlLib16
{

CTreeText::CTreeText(std::u16string_view text)
    : CTreeText(text.size(), [text](char16_t * pOut) { text.copy(pOut, text.size()); })
{
}

char16_t * CTreeText::Allocate(std::size_t nUnits)
{
    return nUnits != 0 ? static_cast<char16_t *>(CTreeMemory::operator new(nUnits * sizeof(char16_t))) : nullptr;
}

void CTreeText::Free() noexcept
{
    CTreeMemory::operator delete(m_pUnits);
    delete m_pString.load(std::memory_order_relaxed);
}

std::u16string const & CTreeText::MakeString() const
{
    // Never destroyed: objects may outlive the static objects of the library.
    static std::u16string const * const s_pEmpty = new std::u16string;
    if (m_pUnits == nullptr)
        return *s_pEmpty;
    auto pString = std::make_unique<std::u16string>(View());
    std::u16string * pFirst = nullptr;
    return m_pString.compare_exchange_strong(pFirst, pString.get(), std::memory_order_acq_rel) ? *pString.release()
                                                                                               : *pFirst;
}

} // namespace QzXmlLib16
