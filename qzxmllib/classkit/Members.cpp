#include "qzxmllib/classkit/Members.h"

#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <algorithm>
#include <limits>

namespace QzXmlLib16::ClassKit
{

ListBase::ListBase(QzXmlLib16Data::CreateObjectFunction pfnCreate, bool bPseudo)
    : m_pfnCreate(pfnCreate), m_bPseudo(bPseudo)
{
}

void ListBase::Append(Object & object)
{
    object.SetTag(m_strElementName);
    AppendItem(&object);
}

Object & ListBase::AddNew()
{
    CSmartPtr<CXmlObjectBase> spItem = m_pfnCreate(0, m_strElementName.c_str());
    auto & item = static_cast<Object &>(*spItem);
    TakeItem(std::move(spItem));
    return item;
}

Object & ListBase::At(std::size_t nIndex) const
{
    int const nAt = nIndex < size() ? static_cast<int>(nIndex) : -1;
    return static_cast<Object &>(*GetNodeAtIndex(nAt)->m_spItem);
}

void ListBase::Describe(Property const & property)
{
    if (m_strElementName != property.GetName() || m_strNamespace != property.GetNamespace())
    {
        m_strElementName = property.GetName();
        m_strNamespace = property.GetNamespace();
        // Items that were added before the list knew its name.
        for (CNode const * pNode = m_pHead; pNode != nullptr && !m_bPseudo; pNode = pNode->m_pNext)
            static_cast<Object &>(*pNode->m_spItem).SetTag(m_strElementName);
    }
    SetOccurs(property.GetMinOccurs(), property.GetMaxOccurs());
    m_pfnCreateFrom = property.GetCreateFromElement();
}

void ListBase::AssignItems(ListBase const & other)
{
    if (this == &other)
        return;
    Clear();
    for (CNode const * pNode = other.m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
        Append(*static_cast<Object const &>(*pNode->m_spItem).MakeCopy());
}

bool ListBase::HasEqualItems(ListBase const & other) const
{
    if (m_nCount != other.m_nCount)
        return false;
    CNode const * pOther = other.m_pHead;
    for (CNode const * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext, pOther = pOther->m_pNext)
        if (!static_cast<Object const &>(*pNode->m_spItem).Equals(static_cast<Object const &>(*pOther->m_spItem)))
            return false;
    return true;
}

void ListBase::ToXml_Int(
    CXmlWriter * pWriter, bool, char16_t const * namespaceUri, CSerializationContext const & ctx, bool) const
{
    ItemsToXml(pWriter, namespaceUri, ctx);
}

CXmlElement * ListBase::FromXml_Int(
    CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx, bool)
{
    if (!m_bPseudo)
    {
        for (; pChild != nullptr && DoesElementNameMatch(ctx, pChild, m_strElementName.c_str(), m_strNamespace.c_str());
             pChild = pChild->GetNextSiblingElement())
        {
            CSmartPtr<CXmlObjectBase> spItem =
                m_pfnCreateFrom != nullptr ? m_pfnCreateFrom(pChild) : m_pfnCreate(0, m_strElementName.c_str());
            if (spItem == nullptr)
                throw CQzValidationException(
                    FormatString(u"No class is known for the type of the element [%s]", pChild->GetLocalName()),
                    pChild->GetXPath());
            CXmlObjectBase::FromXml_Int(spItem, pChild, pChild->GetFirstElement(), ctx);
            TakeItem(std::move(spItem));
        }
        return pChild;
    }
    while (pChild != nullptr)
    {
        CSmartPtr<CXmlObjectBase> spItem = m_pfnCreate(0, u"");
        CXmlElement * const pNext = CXmlObjectBase::FromXml_Int(spItem, pElement, pChild, ctx);
        if (pNext == pChild)
            break;
        TakeItem(std::move(spItem));
        pChild = pNext;
    }
    return pChild;
}

Wildcards::Wildcards() : CElementCol(u"", u"##any", u"", 0, -1)
{
    AddRef();
}

Wildcards::Wildcards(Wildcards const & other) : Wildcards()
{
    *this = other;
}

Wildcards & Wildcards::operator=(Wildcards const & other)
{
    if (this == &other)
        return *this;
    Clear();
    for (CElement const & element : other)
        Add(element.Clone());
    return *this;
}

void Wildcards::Describe(Object const & owner, Property const & property)
{
    m_pOwner = &owner;
    m_pProperty = &property;
}

bool Wildcards::HasEqualItems(Wildcards const & other) const
{
    auto const text = [](CElement const & element) { return element.ToXml(false, false); };
    return GetCount() == other.GetCount() &&
           std::equal(begin(), end(), other.begin(),
               [&](CElement const & a, CElement const & b) { return text(a) == text(b); });
}

CXmlElement * Wildcards::FromXml_Int(
    CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx, bool)
{
    std::u16string const strTarget = m_pOwner->GetTables().GetInfo()->GetElementNamespace();
    while (pChild != nullptr)
    {
        std::u16string const & strUri = pChild->GetNamespaceURI();
        if (!IsNamespaceValid(strUri.c_str(), m_pProperty->GetNamespaceList().c_str(), strTarget.c_str()) ||
            m_pOwner->GetTables().IsFollower(*m_pProperty, pChild->GetLocalName(), strUri))
            break;
        CSmartPtr<CElement> const spItem(new CElement(pChild->GetLocalName().c_str()));
        CXmlObjectBase::FromXml_Int(spItem, pElement, pChild, ctx);
        Add(spItem.Get());
        pChild = pChild->GetNextSiblingElement();
    }
    return pChild;
}

int NumberOfText(char16_t const * const * pTexts, std::size_t nTexts, char16_t const * pszText)
{
    std::u16string const strText = CWhitespaceUtils::Collapse(pszText);
    auto const * const pFound = std::find(pTexts, pTexts + nTexts, strText);
    if (pFound == pTexts + nTexts)
        throw CQzInvalidValueException(FormatString(u"The value [%s] is none of the enumeration", strText));
    return static_cast<int>(pFound - pTexts);
}

} // namespace QzXmlLib16::ClassKit
