#include "qzxmllib/binding/XmlGeneratedClass.h"

#include "qzxmllib/binding/Attribute.h"
#include "qzxmllib/binding/AttributeInfo.h"
#include "qzxmllib/binding/ElementInfo.h"
#include "qzxmllib/binding/GeneratedClassInternal.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/document/WriteScratchInternal.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/ExceptionChainInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/ThreadStackInternal.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

#include <cxxabi.h>
#include <typeinfo>

using namespace QzXmlLib16Data;

namespace QzXmlLib16
{

// The functions that raise are kept out of line: their temporaries would otherwise widen the frames of the walk, which
// recurses once for each level of nesting.
namespace
{

[[noreturn, gnu::cold, gnu::noinline]] void ThrowWriteFailure(
    std::u16string const & strElementName, CQzException & inner)
{
    throw CExceptionChain::Wrap<CQzValidationException>(
        inner, FormatString(u"Failed to convert the element [%s] to XML", strElementName), std::u16string());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowReadFailure(CXmlElement const * pElement, CQzException const & inner)
{
    if (inner.GetPath().empty())
        throw CQzValidationException(u"Failed to process the element.", pElement->GetXPath(), inner);
    // The place at fault is known: the failure goes on as a copy of the root class, with message, path and cause.
    throw CQzException(inner);
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowLeftOver(CXmlElement const * pElement, CXmlElement const * pLeftOver)
{
    throw CQzValidationException(
        FormatString(u"Failed read all the elements held within the element [%s]. The unexpected element [%s] remains "
                     u"un processed",
            pElement->GetLocalName(), pLeftOver->GetLocalName()),
        pElement->GetXPath());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowEmptyChoiceRead(CXmlElement const * pElement)
{
    throw CQzValidationException(
        FormatString(u"No child elements within the element [%s] were populated. The element represents a choice, so "
                     u"one and only one element should be populated. The element contained no sutable child elements",
            pElement->GetLocalName()),
        pElement->GetXPath());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowEmptyChoiceWritten()
{
    throw CQzValidationException(u"This element is a choice, and as such must have at one (and only one) valid item, "
                                 u"currently there are none set",
        std::u16string());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowNoTable(CXmlGeneratedClass const & object, char16_t const * pszKind)
{
    QzXmlLib16Data::CParentElementInfo const * const pInfo = object.GetClassInfo();
    throw CQzInvalidStateException(FormatString(u"The class [%s] has no table of its %s",
        pInfo != nullptr ? pInfo->GetElementName() : std::u16string(), pszKind));
}

QzXmlLib16Data::CElementInfo ** ElementsOf(CXmlGeneratedClass const & object)
{
    QzXmlLib16Data::CElementInfo ** const ppElements = object.GetClassElementInfo();
    if (ppElements == nullptr)
        ThrowNoTable(object, u"elements");
    return ppElements;
}

QzXmlLib16Data::CAttributeInfo ** AttributesOf(CXmlGeneratedClass const & object)
{
    QzXmlLib16Data::CAttributeInfo ** const ppAttributes = object.GetClassAttributeInfo();
    if (ppAttributes == nullptr)
        ThrowNoTable(object, u"attributes");
    return ppAttributes;
}

/// Whether a class has but one base at each level up to CXmlGeneratedClass, so that INillable is none of them.
bool HasOnlySingleBases(std::type_info const & type)
{
#if defined(__GLIBCXX__)
    // Addresses settle it: what looks different here is asked for in full.
    std::type_info const * pType = &type;
    while (pType != &typeid(CXmlGeneratedClass))
    {
        if (&typeid(*pType) != &typeid(abi::__si_class_type_info))
            return false;
        pType = static_cast<abi::__si_class_type_info const *>(pType)->__base_type;
    }
    return true;
#else
    static_cast<void>(type);
    return false;
#endif
}

bool HasTextProperty(CParentElementInfo const & info)
{
    return info.GetPrimitiveValuePropertyIndex() != -1 && info.GetPrimitiveDataType() != ItemType_Invalid;
}

template <class... Entries>
bool IsOneOf(CElementInfo const * pEntry)
{
    return ((dynamic_cast<Entries const *>(pEntry) != nullptr) || ...);
}

} // namespace

[[noreturn, gnu::cold, gnu::noinline]] void ThrowNotNillable(CXmlElement const & element)
{
    throw CQzValidationException(u"Invalid use of 'nil' attribute in non-nillable element.", element.GetXPath());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowBadNil(CXmlAttribute const & attribute)
{
    throw CQzValidationException(
        FormatString(u"Unexpected Value [%s] for 'nil' Attribute found.", attribute.GetValueView()),
        attribute.GetXPath());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowUnexpectedAttribute(CXmlAttribute const & attribute)
{
    throw CQzValidationException(u"Unexpected Attribute found.", attribute.GetXPath());
}

INillable * FindNillable(CXmlGeneratedClass * pObject)
{
    // Asked each time: an answer kept by the address of the type would outlive a plug-in that defines the class, and
    // hold for whatever is loaded there next. Most classes are settled by a few comparisons.
    return HasOnlySingleBases(typeid(*pObject)) ? nullptr : dynamic_cast<INillable *>(pObject);
}

NilText ParseNilText(std::u16string_view text)
{
    auto const equals = [text](std::u16string_view word)
    {
        if (text.size() != word.size())
            return false;
        for (std::size_t i = 0; i < text.size(); ++i)
            if ((text[i] >= u'A' && text[i] <= u'Z' ? text[i] + 32 : text[i]) != word[i])
                return false;
        return true;
    };
    if (equals(u"true") || equals(u"1"))
        return NilText_True;
    return equals(u"false") || equals(u"0") ? NilText_False : NilText_Other;
}

/// The namespace of a class, for the entries that take it.
class CXmlGeneratedClass::CClassNamespace
{
public:
    explicit CClassNamespace(CXmlGeneratedClass & object) : m_object(object) {}
    char16_t const * For(CElementInfo const & entry)
    {
        if (!entry.m_bTakesNamespace)
            return u"";
        if (!m_bKnown)
            m_strNamespace = m_object.GetNamespace();
        m_bKnown = true;
        return m_strNamespace.c_str();
    }

private:
    CXmlGeneratedClass & m_object;
    bool m_bKnown = false;
    std::u16string m_strNamespace;
};

CXmlGeneratedClass::CXmlGeneratedClass() = default;
CXmlGeneratedClass::CXmlGeneratedClass(CXmlGeneratedClass const & other) = default;
CXmlGeneratedClass & CXmlGeneratedClass::operator=(CXmlGeneratedClass const & other) = default;
CXmlGeneratedClass::~CXmlGeneratedClass() = default;

void CXmlGeneratedClass::ReadProperty(int index, QzVariant & value) const
{
    const_cast<CXmlGeneratedClass *>(this)->AccessProperty(index, true, value);
}

int CXmlGeneratedClass::GetClassElementInfoCount() const
{
    return static_cast<int>(CountEntries(ElementsOf(*this)));
}

bool CXmlGeneratedClass::IsElementInList(CSerializationContext const & ctx, CXmlElement * pElement) const
{
    CElementInfo ** const ppElements = ElementsOf(*this);
    int const nCount = GetClassElementInfoCount();
    for (int i = 0; i < nCount; ++i)
        if (ppElements[i]->IsThisElement(ctx, pElement))
            return true;
    return false;
}

bool CXmlGeneratedClass::DoesElementContainOptionalElements() const
{
    for (CElementInfo ** ppElements = ElementsOf(*this); *ppElements != nullptr; ++ppElements)
    {
        CElementInfo const * const pEntry = *ppElements;
        if (IsOneOf<CElementInfoChoicePrimCol, CElementInfoChoiceClsCol, CElementInfoChoiceAbsClsCol,
                CElementInfoChoiceEnumCol, CElementInfoChoiceUntpdCol>(pEntry))
        {
            QzVariant value;
            ReadProperty(pEntry->GetPropertyIndex(), value);
            if (CVariantText::CollectionOf(value)->GetMinOccurs() == 0)
                return true;
        }
        else if (IsOneOf<CElementInfoChoicePrimOpt, CElementInfoChoiceClsOpt, CElementInfoChoiceAbsClsOpt,
                     CElementInfoChoiceEnumOpt, CElementInfoChoiceUntpdOpt>(pEntry))
        {
            return true;
        }
    }
    return false;
}

void CXmlGeneratedClass::CleanMetaData(
    CParentElementInfo *& pParent, CElementInfo **& ppElements, CAttributeInfo **& ppAttributes)
{
    auto const cleanTable = [](auto **& ppTable)
    {
        if (ppTable == nullptr)
            return;
        for (auto ** ppEntry = ppTable; *ppEntry != nullptr; ++ppEntry)
        {
            delete *ppEntry;
            *ppEntry = nullptr;
        }
        delete[] ppTable;
        ppTable = nullptr;
    };
    delete pParent;
    pParent = nullptr;
    cleanTable(ppElements);
    cleanTable(ppAttributes);
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter * pWriter, CSerializationContext const & ctx) const
{
    try
    {
        CParentElementInfo const & info = *GetClassInfo();
        // A pseudo class has no tag of its own that could carry the type.
        if (ctx.GetWriteTypeAttribute() && info.GetHasBaseClasses() &&
            info.GetElementType() == XmlElementType_Element && info.GetElementName() != m_strElementName)
            pWriter->WriteXsiType(info.GetElementNamespace(), info.GetElementName(), ItemType_string);
        ProcessAttributesToXml(ctx, ElementsOf(*this), AttributesOf(*this), pWriter);
    }
    catch (CQzException & inner)
    {
        throw CExceptionChain::Wrap<CQzException>(inner, u"Failed to convert attributes to XML");
    }
}

void CXmlGeneratedClass::ProcessAttributesToXml(CSerializationContext const & ctx, CElementInfo ** ppElements,
    CAttributeInfo ** ppAttributes, CXmlWriter * pWriter) const
{
    for (; *ppAttributes != nullptr; ++ppAttributes)
        (*ppAttributes)->AttributeToXml(ctx, this, pWriter);
    for (; *ppElements != nullptr; ++ppElements)
        (*ppElements)->PseudoChildAttributeToXml(ctx, this, pWriter);
}

void CXmlGeneratedClass::WriteRootDeclarations(CXmlWriter * pWriter, CSerializationContext const & ctx) const
{
    for (std::u16string const & strInstruction : ctx.GetProcessingInstructions())
        pWriter->WriteProcessingInstruction(strInstruction);
    // Looking up an unknown URI leaves it in the map without an alias: nothing can be declared for it.
    for (auto const & [strUri, strAlias] : ctx.GetNamespaceAliases().m_mapAliases)
        if (!strAlias.empty())
            pWriter->AddNamespace(strAlias, strUri);
    std::u16string const strDefault = ctx.GetDefaultNamespaceURI();
    if (!strDefault.empty())
        pWriter->SetDefaultNamespace(strDefault);
}

void CXmlGeneratedClass::WriteStartTag(
    CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri, CSerializationContext const & ctx) const
{
    if (isRoot)
        WriteRootDeclarations(pWriter, ctx);
    if (std::u16string const * const pLent = CNamespaceLoan::Find(*pWriter, namespaceUri))
    {
        pWriter->WriteStartElement(m_strElementName, *pLent);
    }
    else
    {
        CWriteLease const lease(*pWriter);
        pWriter->WriteStartElement(m_strElementName, lease.Text().assign(OrEmpty(namespaceUri)));
    }
    if (isRoot)
        if (CAttributeCol const * const pAttributes = ctx.FindAdditionalRootAttributes())
            CXmlObjectBase::ToXml_Int(pAttributes, pWriter, false, namespaceUri, ctx, false);
    AttributesToXml_Int(pWriter, ctx);
    if (!isRoot)
        return;
    std::u16string const strSchema = ctx.GetInLineSchema();
    if (!strSchema.empty())
        pWriter->WriteInLineSchema(strSchema);
}

void CXmlGeneratedClass::WriteTextProperty(
    CParentElementInfo const & info, CXmlWriter * pWriter, CSerializationContext const & ctx) const
{
    CWriteLease const lease(*pWriter);
    QzVariant & value = lease.Value();
    ReadProperty(info.GetPrimitiveValuePropertyIndex(), value);
    if (value.IsNil())
    {
        pWriter->WriteXsiNil();
        return;
    }
    pWriter->WriteTextView(
        CVariantText::View(value, info.GetPrimitiveFormatOverride(), ctx.GetExactValues(), lease.Text()),
        value.GetTypeAsEnum());
}

void CXmlGeneratedClass::ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri,
    CSerializationContext const & ctx, bool emptyChoiceAllowed) const
{
    try
    {
        RequireStack();
        CParentElementInfo const & info = *GetClassInfo();
        bool const bElement = info.GetElementType() == XmlElementType_Element;
        if (bElement)
            WriteStartTag(pWriter, isRoot, namespaceUri, ctx);
        INillable * const pNillable = FindNillable(const_cast<CXmlGeneratedClass *>(this));
        if (pNillable != nullptr && pNillable->IsNil())
        {
            pWriter->WriteXsiNil();
        }
        else
        {
            switch (info.GetElementGroupType())
            {
            case XmlElementGroupType_Sequence:
                ProcessElementSeqToXml(ctx, ElementsOf(*this), pWriter);
                break;
            case XmlElementGroupType_Choice:
                ProcessElementChoiceToXml(ctx, ElementsOf(*this), pWriter, emptyChoiceAllowed);
                break;
            case XmlElementGroupType_All:
                ProcessElementAllToXml(ctx, ElementsOf(*this), pWriter);
                break;
            default:
                throw CQzException(u"Unknown XML Group Type");
            }
            if (HasTextProperty(info))
                WriteTextProperty(info, pWriter, ctx);
        }
        if (bElement)
            pWriter->WriteEndElement();
    }
    catch (CQzException & inner)
    {
        ThrowWriteFailure(m_strElementName, inner);
    }
}

void CXmlGeneratedClass::ProcessElementSeqToXml(
    CSerializationContext const & ctx, CElementInfo ** ppElements, CXmlWriter * pWriter) const
{
    for (; *ppElements != nullptr; ++ppElements)
        (*ppElements)->ElementToXml(ctx, this, pWriter);
}

void CXmlGeneratedClass::ProcessElementAllToXml(
    CSerializationContext const & ctx, CElementInfo ** ppElements, CXmlWriter * pWriter) const
{
    // The order of an all group is free; the table's order is as good as any.
    ProcessElementSeqToXml(ctx, ppElements, pWriter);
}

void CXmlGeneratedClass::ProcessElementChoiceToXml(
    CSerializationContext const & ctx, CElementInfo ** ppElements, CXmlWriter * pWriter, bool emptyChoiceAllowed) const
{
    for (; *ppElements != nullptr; ++ppElements)
        if ((*ppElements)->ElementToXml(ctx, this, pWriter))
            return;
    if (!DoesElementContainOptionalElements() && !emptyChoiceAllowed && !ctx.GetIgnoreMissingChoice())
        ThrowEmptyChoiceWritten();
}

CXmlElement * CXmlGeneratedClass::FromXml_Int(
    CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx, bool emptyChoiceAllowed)
{
    try
    {
        RequireStack();
        Init();
        CParentElementInfo const & info = *GetClassInfo();
        XmlElementType const eType = info.GetElementType();
        if (eType == XmlElementType_Element && !EqualText(m_strElementName, pElement->GetLocalName()))
            m_strElementName = pElement->GetLocalName();
        ProcessAttributesFromXml(ctx, pElement, info.GetFromXmlFailIfAttributeUnknown());
        INillable * const pNillable = FindNillable(this);
        if (pNillable != nullptr && pNillable->IsNil())
            return pChild;
        switch (info.GetElementGroupType())
        {
        case XmlElementGroupType_Sequence:
            pChild = ProcessElementSeqFromXml(ctx, pElement, pChild, eType);
            break;
        case XmlElementGroupType_Choice:
            pChild = ProcessElementChoiceFromXml(ctx, pElement, pChild, eType, emptyChoiceAllowed);
            break;
        case XmlElementGroupType_All:
            pChild = ProcessElementAllFromXml(ctx, pElement, pChild, eType);
            break;
        default:
            throw CQzException(u"Unknown Group Type");
        }
        if (HasTextProperty(info))
            ReadTextProperty(info, pElement);
        return pChild;
    }
    catch (CQzException const & inner)
    {
        ThrowReadFailure(pElement, inner);
    }
}

void CXmlGeneratedClass::ReadTextProperty(CParentElementInfo const & info, CXmlElement const * pElement)
{
    QzVariant value;
    if (info.GetOutputPrimitiveClassAsTextProperty())
        value.SetString(std::u16string(pElement->GetTextView()));
    else
        CVariantText::Assign(
            value, pElement->GetTextView(), info.GetPrimitiveDataType(), CWhitespaceUtils::WhitespaceRule_None);
    AccessProperty(info.GetPrimitiveValuePropertyIndex(), false, value);
}

void CXmlGeneratedClass::ReadNilAttribute(CXmlAttribute const & attribute, CXmlElement const * pElement)
{
    INillable * const pNillable = FindNillable(this);
    if (pNillable == nullptr)
        ThrowNotNillable(*pElement);
    NilText const eNil = ParseNilText(attribute.GetValueView());
    if (eNil == NilText_Other)
        ThrowBadNil(attribute);
    pNillable->SetNil(eNil == NilText_True);
}

bool CXmlGeneratedClass::OfferAttribute(
    CSerializationContext const & ctx, CXmlAttribute * pAttribute, CAttributeInfo ** ppAttributes, CFlagList & found)
{
    for (std::size_t i = 0; ppAttributes[i] != nullptr; ++i)
    {
        if (ppAttributes[i]->AttributeFromXml(ctx, this, pAttribute))
        {
            found.Set(i);
            return true;
        }
    }
    return false;
}

void CXmlGeneratedClass::ProcessAttributesFromXml(
    CSerializationContext const & ctx, CXmlElement * pElement, bool failIfUnknown)
{
    CAttributeInfo ** const ppAttributes = AttributesOf(*this);
    std::size_t const nEntries = CountEntries(ppAttributes);
    CFlagList found(nEntries);
    for (CXmlAttribute * pAttribute = pElement->GetFirstAttribute(); pAttribute != nullptr;
         pAttribute = pAttribute->GetNextAttribute())
    {
        if (pAttribute->IsNamespaceAttribute())
            continue;
        if (pAttribute->IsNilAttribute())
            ReadNilAttribute(*pAttribute, pElement);
        else if (!OfferAttribute(ctx, pAttribute, ppAttributes, found) && failIfUnknown &&
                 !ctx.GetIgnoreUnknownAttributes())
            ThrowUnexpectedAttribute(*pAttribute);
    }
    for (std::size_t i = 0; i < nEntries; ++i)
        ppAttributes[i]->Validate(ctx, found.Get(i));
}

CXmlElement * CXmlGeneratedClass::ProcessElementSeqFromXml(
    CSerializationContext const & ctx, CXmlElement * pElement, CXmlElement * pChild, XmlElementType eType)
{
    CElementInfo ** const ppElements = ElementsOf(*this);
    CClassNamespace classNamespace(*this);
    bool const bSkip = ctx.GetIgnoreUnknownElements();
    CXmlElement * pCurrent = pChild;
    CElementInfo ** ppEntry = ppElements;
    for (;;)
    {
        for (; *ppEntry != nullptr; ++ppEntry)
        {
            char16_t const * const pszNamespace = classNamespace.For(**ppEntry);
            while (!(*ppEntry)->ElementFromXml(ctx, this, pElement, &pCurrent, pszNamespace, eType))
            {
                // The group as a whole did not match: the position goes back, what was read stays.
                if (!bSkip || pCurrent == nullptr)
                    return pChild;
                pCurrent = pCurrent->GetNextSiblingElement();
            }
        }
        if (eType != XmlElementType_Element || pCurrent == nullptr)
            return pCurrent;
        if (!bSkip)
            ThrowLeftOver(pElement, pCurrent);
        // One element is skipped, and only the last entry gets another try behind it.
        pCurrent = pCurrent->GetNextSiblingElement();
        if (pCurrent == nullptr)
            return nullptr;
        if (ppEntry != ppElements)
            --ppEntry;
    }
}

CXmlElement * CXmlGeneratedClass::ProcessElementAllFromXml(
    CSerializationContext const & ctx, CXmlElement * pElement, CXmlElement * pChild, XmlElementType eType)
{
    CElementInfo ** const ppElements = ElementsOf(*this);
    std::size_t const nEntries = CountEntries(ppElements);
    CClassNamespace classNamespace(*this);
    CFlagList found(nEntries);
    CXmlElement * pCurrent = pChild;
    CXmlElement const * pLast = nullptr;
    while (pCurrent != nullptr && pCurrent != pLast)
    {
        pLast = pCurrent;
        for (std::size_t i = 0; i < nEntries; ++i)
            if (!found.Get(i) && ppElements[i]->ElementFromXml(
                                     ctx, this, pElement, &pCurrent, classNamespace.For(*ppElements[i]), eType))
                found.Set(i);
    }
    bool const bElement = eType == XmlElementType_Element;
    for (std::size_t i = 0; i < nEntries; ++i)
        if (!ppElements[i]->Validate(ctx, this, found.Get(i), bElement))
            return pChild;
    if (bElement && pCurrent != nullptr && !ctx.GetIgnoreUnknownElements())
        ThrowLeftOver(pElement, pCurrent);
    return pCurrent;
}

CXmlElement * CXmlGeneratedClass::ProcessElementChoiceFromXml(CSerializationContext const & ctx, CXmlElement * pElement,
    CXmlElement * pChild, XmlElementType eType, bool emptyChoiceAllowed)
{
    CElementInfo ** const ppElements = ElementsOf(*this);
    CClassNamespace classNamespace(*this);
    bool const bElement = eType == XmlElementType_Element;
    bool const bSkip = ctx.GetIgnoreUnknownElements();
    CXmlElement * pCurrent = pChild;
    bool bFound = false;
    for (;;)
    {
        for (std::size_t i = 0; ppElements[i] != nullptr && !bFound; ++i)
            bFound = ppElements[i]->ElementFromXml(
                ctx, this, pElement, &pCurrent, classNamespace.For(*ppElements[i]), eType);
        // Only a class with an element of its own hunts through its children for a match.
        if (bFound || !bSkip || !bElement || pCurrent == nullptr)
            break;
        pCurrent = pCurrent->GetNextSiblingElement();
        if (pCurrent == nullptr)
            break;
    }
    if (!bFound && !emptyChoiceAllowed)
    {
        if (!bElement && bSkip)
            pCurrent = pChild;
        if (bElement && !DoesElementContainOptionalElements() && !ctx.GetIgnoreMissingChoice())
            ThrowEmptyChoiceRead(pElement);
    }
    if (bElement && pCurrent != nullptr && !bSkip)
        ThrowLeftOver(pElement, pCurrent);
    return pCurrent;
}

} // namespace QzXmlLib16
