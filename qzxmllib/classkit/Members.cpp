#include "qzxmllib/classkit/Members.h"

#include "qzxmllib/binding/AttributeInfo.h"
#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/QzVariantInternal.h"
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

void ValuesBase::Describe(Property const & property)
{
    m_pProperty = &property;
    m_strElementName = property.GetName();
    m_strNamespace = property.GetNamespace();
    SetOccurs(property.GetMinOccurs(), property.GetMaxOccurs());
}

void ValuesBase::Check(QzVariant const & value) const
{
    if (m_pProperty->GetMember().pfnToText == nullptr && !value.IsNil())
        QzXmlLib16Data::CAttributeInfoPrimitive(m_strElementName.c_str(), u"", 0, true, m_pProperty->GetMember().eType,
            u"", m_pProperty->GetWhiteSpace(), m_pProperty->GetFacets(), u"")
            .CheckRestriction(value);
}

void ValuesBase::ToXml_Int(CXmlWriter * pWriter, bool, char16_t const *, CSerializationContext const & ctx, bool) const
{
    ValidateCount(ctx);
    Member const & member = m_pProperty->GetMember();
    std::u16string strScratch;
    for (std::size_t i = 0; i < static_cast<std::size_t>(GetCount()); ++i)
    {
        QzVariant value;
        GetItem(i, value);
        Check(value);
        if (value.IsNil())
        {
            pWriter->WriteStartElement(m_strElementName, m_strNamespace);
            pWriter->WriteXsiNil();
            pWriter->WriteEndElement();
        }
        else if (member.pfnToText != nullptr)
        {
            char16_t const * const pszText = member.pfnToText(value.GetI4());
            if (pszText == nullptr)
                throw CQzInvalidValueException(
                    FormatString(u"The number [%d] is none of the enumeration [%s]", value.GetI4(), m_strElementName));
            pWriter->WriteElementView(m_strElementName, m_strNamespace, pszText, ItemType_string);
        }
        else
        {
            pWriter->WriteElementView(m_strElementName, m_strNamespace,
                CVariantText::View(value, u"", ctx.GetExactValues(), strScratch), member.eType);
        }
    }
}

CXmlElement * ValuesBase::FromXml_Int(CXmlElement *, CXmlElement * pChild, CSerializationContext const & ctx, bool)
{
    Member const & member = m_pProperty->GetMember();
    for (; pChild != nullptr && DoesElementNameMatch(ctx, pChild, m_strElementName.c_str(), m_strNamespace.c_str());
         pChild = pChild->GetNextSiblingElement())
    {
        QzVariant value;
        std::u16string const & strNil = pChild->GetAttribute(u"nil", kXsiNamespace);
        if (strNil == u"true" || strNil == u"1")
        {
            if (!member.bNillable)
                throw CQzValidationException(
                    u"Invalid use of 'nil' attribute in non-nillable element.", pChild->GetXPath());
            value.SetNil();
        }
        else
        {
            try
            {
                if (member.pfnFromText != nullptr)
                    value.SetI4(member.pfnFromText(pChild->GetText().c_str()));
                else
                    value.FromString(pChild->GetTextView(), member.eType, m_pProperty->GetWhiteSpace());
                Check(value);
            }
            catch (CQzException const & inner)
            {
                throw CQzValidationException(inner.GetMessageW(), pChild->GetXPath());
            }
        }
        AddItem(value);
    }
    return pChild;
}

AnyAttributes::AnyAttributes() : CAttributeCol(u"", u"##any", u"")
{
    AddRef();
}

AnyAttributes::AnyAttributes(AnyAttributes const & other) : AnyAttributes()
{
    *this = other;
}

AnyAttributes & AnyAttributes::operator=(AnyAttributes const & other)
{
    if (this == &other)
        return *this;
    Clear();
    for (CAttribute const & attribute : other)
        Add(attribute.Clone());
    return *this;
}

bool operator==(AnyAttributes const & a, AnyAttributes const & b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](CAttribute & left, CAttribute & right)
        {
            return left.GetName() == right.GetName() && left.GetValue() == right.GetValue() &&
                   left.GetNamespace() == right.GetNamespace();
        });
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
