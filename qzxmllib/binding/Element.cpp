#include "qzxmllib/binding/Element.h"

#include "qzxmllib/binding/TreeMemoryInternal.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlTextWriter.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/ExceptionChainInternal.h"
#include "qzxmllib/support/MemoryLeakHelpInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/ThreadStackInternal.h"
#include "qzxmllib/values/FunctionsInternal.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace QzXmlLib16
{

namespace
{

CInstanceName g_elementName(u"CElement");
CInstanceName g_elementColName(u"CElementCol");

/// Levels of a tree that are written, cloned and checked.
constexpr std::int32_t kMaxLevels = 10000;

constexpr std::u16string_view kKeywords[] = {u"##any", u"##other", u"##local", u"##targetNamespace"};

// At fixed places, see ThreadStack.cpp.

/// Levels that are open outside the fragments that this thread writes.
__attribute__((tls_model("initial-exec"))) thread_local std::int32_t t_nOuterLevels = 0;

/// Levels of trees that this thread writes, whatever the writer makes of them.
__attribute__((tls_model("initial-exec"))) thread_local std::int32_t t_nWalkLevels = 0;

/// Levels of a tree that are destroyed one inside the other. What lies deeper waits in a list.
constexpr int kNestedDestructions = 64;
/// The same on a stack that is nearly used up.
constexpr int kNestedOnLowStack = 4;
__attribute__((tls_model("initial-exec"))) thread_local int t_nDestructions = 0;
thread_local CElementCol * t_pDoomed = nullptr;

std::u16string TextOrEmpty(char16_t const * pText)
{
    return pText != nullptr ? std::u16string(pText) : std::u16string();
}

CTreeText CopyText(CXmlElement const & source)
{
    return CTreeText(source.GetTextLength(), [&source](char16_t * pOut) { source.CopyText(pOut); });
}

void RequireText(char16_t const * pText, char16_t const * pszMessage)
{
    if (pText == nullptr)
        throw CQzInvalidNamespaceException(pszMessage, std::u16string());
}

[[noreturn, gnu::cold, gnu::noinline]] void ThrowTooDeep()
{
    throw CQzException(FormatString(u"Elements are nested deeper than %d levels.", kMaxLevels));
}

std::int32_t OpenLevels(CXmlWriter const & writer)
{
    // The depth of the innermost record is no such count: writers indent by it.
    return std::max(t_nWalkLevels, t_nOuterLevels + static_cast<std::int32_t>(writer.GetOpenElements()));
}

/// Counts a level while its children are written.
class CWalkLevel
{
public:
    CWalkLevel() { ++t_nWalkLevels; }
    CWalkLevel(CWalkLevel const &) = delete;
    CWalkLevel & operator=(CWalkLevel const &) = delete;
    ~CWalkLevel() { --t_nWalkLevels; }
};

/// Counts the levels outside a fragment while it is written.
class COuterLevels
{
public:
    explicit COuterLevels(CXmlWriter const & writer) : m_nBefore(t_nOuterLevels)
    {
        t_nOuterLevels = OpenLevels(writer);
    }
    COuterLevels(COuterLevels const &) = delete;
    COuterLevels & operator=(COuterLevels const &) = delete;
    ~COuterLevels() { t_nOuterLevels = m_nBefore; }

private:
    std::int32_t m_nBefore;
};

} // namespace

/// Turns elements of a document into trees of open content, without recursion. Nothing in such a tree can be refused,
/// as the attributes and children of an element are open.
class CElement::CTreeReader
{
public:
    /// Elements that are read: their collections get their namespace.
    explicit CTreeReader(CSharedText const & strTargetNamespace)
        : m_bCollectionsTakeNamespace(true), m_targetNamespace(strTargetNamespace)
    {
    }
    /// Elements that are copied: their collections get none.
    CTreeReader() : m_bCollectionsTakeNamespace(false) {}

    /// The tree below and with pSource.
    CSmartPtr<CElement> Read(CXmlElement * pSource)
    {
        CTreeArena::Use const use(m_arena);
        CSmartPtr<CElement> spRoot(MakeElement(*pSource));
        CElement * pElement = spRoot;
        for (CXmlElement * pAt = pSource;;)
        {
            if (pAt->GetFirstElement() != nullptr)
            {
                m_parents.push_back(pElement);
                pAt = pAt->GetFirstElement();
            }
            else
            {
                for (; pAt != pSource && pAt->GetNextSiblingElement() == nullptr; pAt = pAt->GetParentElm())
                    m_parents.pop_back();
                if (pAt == pSource)
                    return spRoot;
                pAt = pAt->GetNextSiblingElement();
            }
            CSmartPtr<CElement> spElement(MakeElement(*pAt));
            pElement = spElement;
            m_parents.back()->ChildElements().TakeItem(std::move(spElement));
        }
    }

    CSharedText NamespaceOf(CXmlName const & name)
    {
        auto const nBits = reinterpret_cast<std::uintptr_t>(&name);
        Slot & slot = m_slots[((nBits >> 4) ^ (nBits >> 8)) % m_slots.size()];
        if (slot.pName != &name)
        {
            if (m_strLast.String() != name.strNamespaceURI)
                m_strLast = CSharedText(name.strNamespaceURI);
            slot = {&name, CSharedTextStock(m_strLast)};
        }
        return slot.namespaces.Copy();
    }

private:
    /// Namespaces of names met lately; the names belong to the document that is being read.
    struct Slot
    {
        CXmlName const * pName = nullptr;
        CSharedTextStock namespaces;
    };

    CSmartPtr<CElement> MakeElement(CXmlElement const & source)
    {
        CSmartPtr<CElement> spElement(new CElement(
            source, NamespaceOf(*source.GetName()), m_targetNamespace.Copy(), m_bCollectionsTakeNamespace));
        for (CXmlAttribute const * pAttribute = source.GetFirstAttribute(); pAttribute != nullptr;
             pAttribute = pAttribute->GetNextAttribute())
        {
            spElement->Attributes().Append(
                pAttribute->GetLocalName(), pAttribute->GetValueView(), NamespaceOf(*pAttribute->GetName()));
            if (!m_bCollectionsTakeNamespace)
                spElement->TakeContentNamespace(*pAttribute);
        }
        return spElement;
    }

    CTreeArena m_arena;
    bool m_bCollectionsTakeNamespace;
    CSharedTextStock m_targetNamespace;
    CSharedText m_strLast;
    std::array<Slot, 16> m_slots;
    std::vector<CElement *> m_parents;
};

CElement::CElement(char16_t const * name) : CInstanceMonitor(g_elementName)
{
    Init(name, u"", u"##any", u"");
}

CElement::CElement(char16_t const * name, char16_t const * namespaceUri) : CInstanceMonitor(g_elementName)
{
    if (name != nullptr && namespaceUri != nullptr)
        for (std::u16string_view keyword : kKeywords)
            if (keyword == namespaceUri)
                throw CQzInvalidNamespaceException(
                    FormatString(u"Invalid Namespace [%s].", namespaceUri), std::u16string());
    Init(name, namespaceUri, namespaceUri, u"");
}

CElement::CElement(char16_t const * name, char16_t const * namespaceUri, char16_t const * restriction,
    char16_t const * targetNamespace)
    : CInstanceMonitor(g_elementName)
{
    Init(name, namespaceUri, restriction, targetNamespace);
}

CElement::CElement(CXmlObjectBase * pObject, char16_t const * defaultNamespace) : CInstanceMonitor(g_elementName)
{
    Init(u"", u"", u"##any", u"");
    m_strContentNamespace = CSharedText(TextOrEmpty(defaultNamespace));
    CSerializationContext ctx;
    ctx.SetDefaultNamespaceURI(m_strContentNamespace.String().c_str());
    CBinaryData const data =
        pObject->ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, ctx, CompressionType_None);
    CXmlDocument document(ctx);
    document.LoadXmlStream(data.GetData(), data.GetLength());
    CopyXmlElement(document.GetDocumentElement());
}

CElement::CElement(CXmlElement const & source, CSharedText strNamespace, CSharedText strTargetNamespace,
    bool bCollectionsTakeNamespace)
    : CInstanceMonitor(g_elementName), m_text(CopyText(source)), m_strNamespace(std::move(strNamespace)),
      m_strNamespaceRestriction(CSharedText::Any()), m_strTargetNamespace(std::move(strTargetNamespace)),
      m_bCollectionsTakeNamespace(bCollectionsTakeNamespace)
{
    m_strElementName = source.GetLocalName();
}

CElement::CElement(CloneOf const & source)
    : CXmlObjectBase(source.original), CInstanceMonitor(g_elementName), m_text(source.original.m_text),
      m_strNamespace(source.original.m_strNamespace),
      m_strNamespaceRestriction(source.original.m_strNamespaceRestriction),
      m_strTargetNamespace(source.original.m_strTargetNamespace),
      m_bCollectionsTakeNamespace(source.original.m_bCollectionsTakeNamespace)
{
    if (source.original.m_spAttributes != nullptr)
        m_spAttributes = source.original.m_spAttributes->Clone();
    if (source.original.m_spChildElements != nullptr)
        m_spChildElements = source.original.m_spChildElements->MakeEmptyClone();
}

CElement::~CElement()
{
    if (m_spChildElements != nullptr && m_spChildElements->m_nCount != 0)
        CElementCol::Destroy(m_spChildElements);
}

void CElement::Init(char16_t const * name, char16_t const * namespaceUri, char16_t const * restriction,
    char16_t const * targetNamespace)
{
    RequireText(name, u"Element Name must have a value");
    RequireText(namespaceUri, u"Element Namespace must have a value");
    RequireText(restriction, u"Namespace Restriction must have a value");
    RequireText(targetNamespace, u"Target Namespace must have a value");
    TestNamespace(namespaceUri, restriction, targetNamespace);
    m_strElementName = name;
    m_strNamespace = CSharedText(namespaceUri);
    m_strNamespaceRestriction = CSharedText(restriction);
    m_strTargetNamespace = CSharedText(targetNamespace);
    MakeAttributes();
    MakeChildElements();
}

CAttributeCol & CElement::MakeAttributes() const
{
    m_spAttributes =
        new CAttributeCol(m_bCollectionsTakeNamespace ? m_strNamespace : CSharedText(), m_strTargetNamespace);
    return *m_spAttributes;
}

CElementCol & CElement::MakeChildElements() const
{
    m_spChildElements =
        new CElementCol(m_bCollectionsTakeNamespace ? m_strNamespace : CSharedText(), m_strTargetNamespace);
    return *m_spChildElements;
}

CNode * CElement::FirstChildNode() const
{
    return m_spChildElements != nullptr ? m_spChildElements->m_pHead : nullptr;
}

void CElement::SetName(char16_t const * name)
{
    FireOnChangeName(name);
    SetElementName(name);
}

void CElement::SetText(char16_t const * text)
{
    FireOnChangeText(text);
    m_text = CTreeText(OrEmpty(text));
}

void CElement::SetNamespace(char16_t const * namespaceUri)
{
    FireOnChangeNamespace(namespaceUri);
    // The collections keep the namespace that the element was made with.
    Attributes();
    ChildElements();
    m_strNamespace = CSharedText(TextOrEmpty(namespaceUri));
}

void CElement::TakeContentNamespace(CXmlAttribute const & attribute)
{
    if (attribute.GetLocalName() == u"xmlns")
        m_strContentNamespace = CSharedText(std::u16string(attribute.GetValueView()));
}

void CElement::CopyXmlElement(CXmlElement * pSource)
{
    CAttributeCol & attributes = Attributes();
    CElementCol & children = ChildElements();
    m_strElementName = pSource->GetLocalName();
    m_strNamespace = CSharedText(pSource->GetNamespaceURI());
    m_text = CopyText(*pSource);
    attributes.Clear();
    children.Clear();
    CTreeReader reader;
    for (CXmlAttribute const * pAttribute = pSource->GetFirstAttribute(); pAttribute != nullptr;
         pAttribute = pAttribute->GetNextAttribute())
    {
        attributes.Append(
            pAttribute->GetLocalName(), pAttribute->GetValueView(), reader.NamespaceOf(*pAttribute->GetName()));
        TakeContentNamespace(*pAttribute);
    }
    for (CXmlElement * pChild = pSource->GetFirstElement(); pChild != nullptr; pChild = pChild->GetNextSiblingElement())
        children.Add(reader.Read(pChild));
}

void CElement::FromXml(char16_t const * text)
{
    CXmlDocument document;
    document.LoadXml(text);
    CXmlElement * const pRoot = document.GetDocumentElement();
    if (pRoot == nullptr)
        throw CQzException(u"Invalid or empty XML document");
    FromXml_Int(pRoot, pRoot, CSerializationContext::GetDefaultContext(), false);
}

CXmlElement * CElement::FromXml_Int(CXmlElement *, CXmlElement * pChild, CSerializationContext const & ctx, bool)
{
    if (pChild == nullptr || !IsNamespaceAllowed(pChild->GetNamespaceURI(), m_strNamespaceRestriction.String(),
                                 m_strTargetNamespace.String()))
        return pChild;
    CXmlObjectBase::FromXml_Int(&Attributes(), pChild, pChild, ctx);
    if (CXmlObjectBase::FromXml_Int(&ChildElements(), pChild, pChild->GetFirstElement(), ctx) != nullptr)
        throw CQzValidationException(
            FormatString(u"Invalid Element [%s] found.", pChild->GetLocalName()), pChild->GetXPath());
    m_text = CopyText(*pChild);
    m_strElementName = pChild->GetLocalName();
    m_strNamespace = CSharedText(pChild->GetNamespaceURI());
    return pChild->GetNextSiblingElement();
}

void CElement::ToXml_Int(CXmlWriter * pWriter, bool, char16_t const *, CSerializationContext const & ctx, bool) const
{
    if (OpenLevels(*pWriter) >= kMaxLevels)
        ThrowTooDeep();
    // Only XML text can hold a fragment; every other form gets the same content as an ordinary element.
    auto * const pTextWriter = m_strContentNamespace.IsEmpty() ? nullptr : dynamic_cast<CXmlTextWriter *>(pWriter);
    if (pTextWriter != nullptr)
        WriteFragment(pTextWriter);
    else
        WriteElement(pWriter, ctx);
}

void CElement::WriteElement(CXmlWriter * pWriter, CSerializationContext const & ctx) const
{
    bool const bAttributes = m_spAttributes != nullptr && m_spAttributes->m_nCount != 0;
    bool const bChildren = m_spChildElements != nullptr && m_spChildElements->m_nCount != 0;
    if (!bAttributes && !bChildren)
    {
        pWriter->WriteElementView(m_strElementName, m_strNamespace.String(), m_text.View(), ItemType_string);
        return;
    }
    pWriter->WriteStartElement(m_strElementName, m_strNamespace.String());
    if (bAttributes)
        CXmlObjectBase::ToXml_Int(m_spAttributes, pWriter, false, u"", ctx, false);
    if (bChildren)
    {
        RequireStack();
        CWalkLevel const level;
        CXmlObjectBase::ToXml_Int(m_spChildElements, pWriter, false, u"", ctx, false);
    }
    pWriter->WriteTextView(m_text.View(), ItemType_string);
    pWriter->WriteEndElement();
}

[[gnu::noinline]] void CElement::WriteFragment(CXmlTextWriter * pWriter) const
{
    RequireStack();
    COuterLevels const levels(*pWriter);
    CTextStream stream(XmlEncoding_None);
    CXmlTextWriter writer(&stream);
    writer.SetEOL(pWriter->GetEOL());
    writer.SetFormat(pWriter->GetFormat());
    writer.SetExactText(pWriter->GetExactText());
    writer.SetDefaultNamespace(m_strContentNamespace.String());
    writer.WriteStartElement(m_strElementName, m_strNamespace.String());
    CSerializationContext ctx;
    ctx.SetDefaultNamespaceURI(m_strContentNamespace.String().c_str());
    CXmlObjectBase::ToXml_Int(&ChildElements(), &writer, false, u"", ctx, false);
    writer.WriteTextView(m_text.View(), ItemType_string);
    writer.WriteEndElement();
    stream.Flush();
    pWriter->CloseStartTag();
    pWriter->WriteRaw(stream.TakeText());
}

CSmartPtr<CElement> CElement::Clone() const
{
    struct Level
    {
        CNode const * pNext;
        CElementCol * pClones;
    };
    CSmartPtr<CElement> spClone(new CElement(CloneOf{*this}));
    std::vector<Level> levels{{FirstChildNode(), spClone->m_spChildElements}};
    while (!levels.empty())
    {
        Level & level = levels.back();
        if (level.pNext == nullptr)
        {
            levels.pop_back();
            continue;
        }
        if (levels.size() >= kMaxLevels)
            ThrowTooDeep();
        auto const * const pChild = static_cast<CElement const *>(level.pNext->m_spItem.Get());
        level.pNext = level.pNext->m_pNext;
        CSmartPtr<CElement> const spChild(new CElement(CloneOf{*pChild}));
        level.pClones->AppendItem(spChild);
        levels.push_back({pChild->FirstChildNode(), spChild->m_spChildElements});
    }
    return spClone;
}

void CElement::TestNamespaces(std::u16string const & strRestriction, std::u16string const & strTarget)
{
    CheckNamespaceAllowed(m_strNamespace.String(), strRestriction, strTarget);
    if (m_spAttributes == nullptr)
        return;
    for (CAttribute & attribute : *m_spAttributes)
        CheckNamespaceAllowed(attribute.GetNamespace(), strRestriction, strTarget);
}

void CElement::SetNamespaceRestrictions(char16_t const * restriction, char16_t const * targetNamespace)
{
    struct Level
    {
        CElement * pElement;
        CNode const * pNext;
    };
    std::u16string const strRestriction = TextOrEmpty(restriction);
    std::u16string const strTarget = TextOrEmpty(targetNamespace);
    std::vector<Level> levels{{this, FirstChildNode()}};
    try
    {
        TestNamespaces(strRestriction, strTarget);
        while (!levels.empty())
        {
            CNode const * const pNode = levels.back().pNext;
            if (pNode == nullptr)
            {
                levels.pop_back();
                continue;
            }
            if (levels.size() >= kMaxLevels)
                ThrowTooDeep();
            levels.back().pNext = pNode->m_pNext;
            auto * const pChild = static_cast<CElement *>(pNode->m_spItem.Get());
            levels.push_back({pChild, pChild->FirstChildNode()});
            pChild->TestNamespaces(strRestriction, strTarget);
        }
    }
    catch (CQzInvalidNamespaceException & cause)
    {
        auto const wrap = [&](CQzException & inner, Level const & level)
        {
            return CExceptionChain::Wrap<CQzInvalidNamespaceException>(inner,
                FormatString(u"The namespace %s in the class %s is invalid against restriction %s",
                    level.pElement->m_strNamespace.String(), level.pElement->m_strElementName, strRestriction),
                std::u16string());
        };
        std::unique_ptr<CQzInvalidNamespaceException> spFailure;
        CQzException * pFailure = &cause;
        for (; levels.size() > 1; levels.pop_back())
        {
            spFailure.reset(new auto(wrap(*pFailure, levels.back())));
            pFailure = spFailure.get();
        }
        throw wrap(*pFailure, levels.back());
    }
}

CElementCol::CElementCol(
    char16_t const * namespaceUri, char16_t const * restriction, char16_t const * targetNamespace, int, int)
    : CInstanceMonitor(g_elementColName), m_strElementNamespace(TextOrEmpty(namespaceUri)),
      m_strTargetNamespace(TextOrEmpty(targetNamespace))
{
    TestNamespace(namespaceUri, restriction, targetNamespace);
}

CElementCol::CElementCol(CSharedText strElementNamespace, CSharedText strTargetNamespace)
    : CInstanceMonitor(g_elementColName), m_strElementNamespace(std::move(strElementNamespace)),
      m_strTargetNamespace(std::move(strTargetNamespace))
{
}

CElementCol::~CElementCol() = default;

void CElementCol::Destroy(CSmartPtr<CElementCol> & spCollection) noexcept
{
    if (t_nDestructions >= kNestedDestructions || (t_nDestructions >= kNestedOnLowStack && IsStackLow()))
    {
        // One element owns a collection, so it stands in the list once at most.
        CElementCol * const pCollection = spCollection;
        pCollection->AddRef();
        pCollection->m_pNextDoomed = std::exchange(t_pDoomed, pCollection);
        spCollection = nullptr;
        return;
    }
    CTreeArena::Sweep const sweep;
    ++t_nDestructions;
    spCollection = nullptr;
    if (t_nDestructions == 1)
        while (t_pDoomed != nullptr)
            std::exchange(t_pDoomed, t_pDoomed->m_pNextDoomed)->Release();
    --t_nDestructions;
}

CSmartPtr<CElement> CElementCol::Add(char16_t const * name, char16_t const * namespaceUri)
{
    // Held here, so that a listener that refuses the element does not leak it.
    CSmartPtr<CElement> spElement(new CElement(name, namespaceUri, u"##any", m_strTargetNamespace.String().c_str()));
    AppendItem(spElement);
    return spElement;
}

CSmartPtr<CElement> CElementCol::Add(char16_t const * name)
{
    if (m_strElementNamespace.IsEmpty())
        throw CQzInvalidStateException(u"A Namespace has not been set for this Collection");
    return Add(name, m_strElementNamespace.String().c_str());
}

CSmartPtr<CElement> CElementCol::Add(CElement * pElement)
{
    AppendItem(pElement);
    return pElement;
}

void CElementCol::AddAfter(CElement const * pExisting, CElement * pElement)
{
    AddAfterItem(pExisting, pElement);
}

void CElementCol::AddBefore(CElement const * pExisting, CElement * pElement)
{
    AddBeforeItem(pExisting, pElement);
}

CSmartPtr<CElement> CElementCol::Item(int nIndex) const
{
    return static_cast<CElement *>(GetNodeAtIndex(nIndex)->m_spItem.Get());
}

CSmartPtr<CElementCol> CElementCol::MakeEmptyClone() const
{
    return new CElementCol(m_strElementNamespace, m_strTargetNamespace);
}

CSmartPtr<CElementCol> CElementCol::Clone() const
{
    CSmartPtr<CElementCol> spClone = MakeEmptyClone();
    for (CElement const & element : *this)
        spClone->Add(element.Clone());
    return spClone;
}

void CElementCol::ToXml_Int(
    CXmlWriter * pWriter, bool, char16_t const * namespaceUri, CSerializationContext const & ctx, bool) const
{
    ValidateCount(ctx);
    ItemsToXml(pWriter, namespaceUri, ctx);
}

CXmlElement * CElementCol::FromXml_Int(CXmlElement *, CXmlElement * pChild, CSerializationContext const &, bool)
{
    if (pChild == nullptr)
        return nullptr;
    CElement::CTreeReader reader(m_strTargetNamespace);
    for (; pChild != nullptr; pChild = pChild->GetNextSiblingElement())
        Add(reader.Read(pChild));
    return nullptr;
}

CXmlElement * CElementCol::FromXmlLockElementName_Int(char16_t const * name, char16_t const * namespaceUri,
    CXmlElement *, CXmlElement * pChild, CSerializationContext const &)
{
    std::u16string const strName = TextOrEmpty(name);
    std::u16string const strNamespace = TextOrEmpty(namespaceUri);
    CElement::CTreeReader reader(m_strTargetNamespace);
    for (; pChild != nullptr && pChild->GetLocalName() == strName && pChild->GetNamespaceURI() == strNamespace;
         pChild = pChild->GetNextSiblingElement())
        Add(reader.Read(pChild));
    return pChild;
}

} // namespace QzXmlLib16
