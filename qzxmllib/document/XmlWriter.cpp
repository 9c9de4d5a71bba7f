#include "qzxmllib/document/XmlWriter.h"

#include "qzxmllib/document/NamespaceIndexInternal.h"
#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/WriteScratchInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/MemoryLeakHelpInternal.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace QzXmlLib16
{

namespace
{

CInstanceName g_contextName(u"CXmlWriterContext");

/// So many are looked through without an index.
constexpr std::size_t kFewDeclarations = 16;

/// The names of elements at one level are often those of the last one there.
void KeepText(std::u16string & strKept, std::u16string const & strText)
{
    if (!EqualText(strKept, strText))
        strKept.assign(strText);
}

} // namespace

/// Storage of one record, and the texts of the record that was there last, whose capacity the next one uses. The
/// alias stays as it was: a writer that has aliases writes one, or none, for each element.
struct CXmlWriter::Slot
{
    alignas(CXmlWriterContext) unsigned char abyRecord[sizeof(CXmlWriterContext)];
    CXmlWriterContext::CTexts texts;
};

// The count of a nested record comes from its parent's, which saves looking the name up for each element.
CXmlWriter::CXmlWriterContext::CXmlWriterContext(CTexts & texts, CXmlWriterContext * pParent)
    : CInstanceMonitor(g_contextName), m_nDepth(pParent->m_nDepth + 1), m_strNamespace(texts.strNamespace),
      m_strName(texts.strName), m_strWrittenAlias(texts.strWrittenAlias), m_pParent(pParent),
      m_pScope(pParent->m_pScope)
{
    pParent->m_pChild = this;
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(CTexts & texts, std::unique_ptr<CScope> spScope)
    : CInstanceMonitor(g_contextName), m_strNamespace(texts.strNamespace), m_strName(texts.strName),
      m_strWrittenAlias(texts.strWrittenAlias), m_pParent(nullptr), m_pScope(this), m_spScope(std::move(spScope))
{
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(std::unique_ptr<CTexts> spTexts, CXmlWriterContext * pParent)
    : CXmlWriterContext(*spTexts, pParent)
{
    m_spTexts = std::move(spTexts);
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(std::unique_ptr<CTexts> spTexts, std::unique_ptr<CScope> spScope)
    : CXmlWriterContext(*spTexts, std::move(spScope))
{
    m_spTexts = std::move(spTexts);
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(
    std::u16string const & strName, std::u16string const & strNamespace, CXmlWriterContext * pParent)
    : CXmlWriterContext(std::unique_ptr<CTexts>(new CTexts{strNamespace, strName, std::u16string()}), pParent)
{
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(std::u16string const & strName, std::u16string const & strNamespace,
    std::u16string const & strDefaultNamespace, CNamespaceMap const & namespaces, CXmlWriterContext * pParent)
    : CXmlWriterContext(std::unique_ptr<CTexts>(new CTexts{strNamespace, strName, std::u16string()}),
          std::unique_ptr<CScope>(new CScope(strDefaultNamespace, namespaces)))
{
    m_pParent = pParent;
    if (pParent != nullptr)
        pParent->m_pChild = this;
}

CXmlWriter::CXmlWriterContext::CScope::CScope(std::u16string const & strDefault, CNamespaceMap const & map)
    : strDefaultNamespace(strDefault), own(map)
{
    Renew();
}

CXmlWriter::CXmlWriterContext::CScope::CScope(std::u16string const & strDefault, CScope const & outer)
    : pOuter(&outer), strDefaultNamespace(strDefault)
{
    Renew();
}

void CXmlWriter::CXmlWriterContext::CScope::Renew() noexcept
{
    static std::atomic<std::uint64_t> s_nLastVersion{0};
    nState = nVersion = s_nLastVersion.fetch_add(1, std::memory_order_relaxed) + 1;
    spWhole.reset();
}

std::u16string const * CXmlWriter::CXmlWriterContext::CScope::Find(std::u16string const & strUri) const
{
    for (CScope const * pScope = this; pScope != nullptr; pScope = pScope->pOuter)
    {
        auto const it = pScope->own.find(strUri);
        if (it != pScope->own.end())
            return &it->second;
    }
    return nullptr;
}

CXmlWriter::CNamespaceMap const & CXmlWriter::CXmlWriterContext::CScope::GetWhole() const
{
    if (pOuter == nullptr)
        return own;
    if (spWhole == nullptr)
    {
        auto spMap = std::make_unique<CNamespaceMap>(own);
        // What lies further in stands already, and insert leaves it.
        for (CScope const * pScope = pOuter; pScope != nullptr; pScope = pScope->pOuter)
            spMap->insert(pScope->own.begin(), pScope->own.end());
        spWhole = std::move(spMap);
    }
    return *spWhole;
}

CXmlWriter::CNamespaceMap const & CXmlWriter::CXmlWriterContext::GetNamespaces() const
{
    return m_pScope->m_spScope->GetWhole();
}

CXmlWriter::CXmlWriterContext::~CXmlWriterContext()
{
    // A loop, as elements may be nested deeper than the native stack allows.
    for (CXmlWriterContext * pRecord = DetachParent(); pRecord != nullptr;)
    {
        CXmlWriterContext * const pNext = pRecord->DetachParent();
        Destroy(pRecord);
        pRecord = pNext;
    }
}

void CXmlWriter::CXmlWriterContext::Destroy(CXmlWriterContext * pRecord) noexcept
{
    if (pRecord->m_bPooled)
        pRecord->~CXmlWriterContext();
    else
        delete pRecord;
}

CXmlWriter::CXmlWriterContext * CXmlWriter::CXmlWriterContext::DetachParent() noexcept
{
    CXmlWriterContext * const pParent = m_pParent;
    m_pParent = nullptr;
    if (pParent != nullptr)
        pParent->m_pChild = nullptr;
    return pParent;
}

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(std::u16string const & strUri)
{
    OwnScope(false);
    m_spScope->strDefaultNamespace = strUri;
    m_spScope->Renew();
}

void CXmlWriter::CXmlWriterContext::AddNamespace(std::u16string const & strUri, std::u16string const & strAlias)
{
    OwnScope(true);
    SetOwn(strUri, strAlias);
}

std::u16string const & CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(std::u16string const & strNamespace)
{
    CScope & scope = *m_pScope->m_spScope;
    if (scope.Find(strNamespace) == nullptr)
        m_pScope->SetOwn(strNamespace, std::u16string());
    return *scope.Find(strNamespace);
}

/// Sets an alias among the declarations of the record's own, which it has.
void CXmlWriter::CXmlWriterContext::SetOwn(std::u16string const & strUri, std::u16string const & strAlias)
{
    CutInnerScopes();
    // The map is changed as a whole or not at all, and an alias that others point to stays where it is.
    m_spScope->own[strUri] = strAlias;
    m_spScope->Renew();
}

/// Gives the record declarations of its own, which begin as those that it reads.
void CXmlWriter::CXmlWriterContext::OwnScope(bool bCopyDefaultNamespace)
{
    if (!Inherits())
        return;
    CXmlWriterContext const * const pOldScope = m_pScope;
    m_spScope.reset(
        new CScope(bCopyDefaultNamespace ? GetDefaultNamespace() : std::u16string(), *pOldScope->m_spScope));
    for (CXmlWriterContext * p = this; p != nullptr && p->m_pScope == pOldScope; p = p->m_pChild)
        p->m_pScope = this;
}

/// Before a change of the record's own declarations: what open elements within it have declared stands in front of
/// those as they are now.
void CXmlWriter::CXmlWriterContext::CutInnerScopes()
{
    for (CXmlWriterContext * p = m_pChild; p != nullptr; p = p->m_pChild)
    {
        if (p->m_spScope == nullptr || p->m_spScope->pOuter != m_spScope.get())
            continue;
        CScope & inner = *p->m_spScope;
        CNamespaceMap whole = inner.GetWhole();
        inner.own.swap(whole);
        inner.pOuter = nullptr;
        inner.Renew();
    }
}

CXmlWriter::CXmlWriter(char16_t const * pszInstanceName) : CInstanceMonitor(pszInstanceName)
{
    m_mapNamespaces[kXmlNamespace] = u"xml";
}

CXmlWriter::~CXmlWriter()
{
    while (m_pContext != nullptr)
        PopContext();
}

void CXmlWriter::StartDocument() {}

void CXmlWriter::EndDocument()
{
    if (m_pContext != nullptr)
        throw CQzException(u"An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(std::u16string const & strUri)
{
    if (m_pContext != nullptr)
        m_pContext->SetDefaultNamespace(strUri);
    else
        m_strDefaultNamespace = strUri;
}

void CXmlWriter::AddNamespace(std::u16string const & strAlias, std::u16string const & strUri)
{
    if (m_pContext != nullptr)
        m_pContext->AddNamespace(strUri, strAlias);
    else
        m_mapNamespaces[strUri] = strAlias;
}

void CXmlWriter::WriteTextView(std::u16string_view text, ItemType eType)
{
    WriteText(std::u16string(text), eType);
}

void CXmlWriter::WriteElementView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType)
{
    WriteStartElement(strName, strUri);
    WriteTextView(text, eType);
    WriteEndElement();
}

void CXmlWriter::WriteAttributeView(
    std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType)
{
    WriteAttribute(strName, strUri, std::u16string(value), eType);
}

std::u16string CXmlWriter::GenerateNamespaceAlias(CNamespaceMap const & namespaces)
{
    if (namespaces.size() < kFewDeclarations)
        for (std::size_t nNumber = 0;; ++nNumber)
        {
            std::u16string strAlias = CNamespaceIndex::ToAlias(nNumber);
            auto const isIt = [&strAlias](auto const & entry) { return entry.second == strAlias; };
            if (std::none_of(namespaces.begin(), namespaces.end(), isIt))
                return strAlias;
        }
    CNamespaceIndex index;
    for (auto const & entry : namespaces)
        index.Declare(entry.first, entry.second);
    return index.FirstFreeAlias();
}

void CXmlWriter::SetArrayState(std::int32_t eState) noexcept
{
    if (m_pContext == nullptr)
        return;
    std::int32_t & eNow = m_pContext->m_eArrayState;
    if (eState == 1 && eNow == 3)
        eState = 4; // the finished array is still to be closed
    else if (eState == 3 && eNow == 1)
        eState = 0; // no array was opened
    eNow = eState;
}

void CXmlWriter::BeginCollection() noexcept
{
    if (m_pContext != nullptr)
        m_pContext->m_eArrayState = m_pContext->m_eArrayState >= 2 ? 4 : 1;
}

void CXmlWriter::EndCollection() noexcept
{
    if (m_pContext != nullptr)
        m_pContext->m_eArrayState = m_pContext->m_eArrayState >= 2 ? 3 : 0;
}

CXmlWriter::CXmlWriterContext & CXmlWriter::PushContext(std::u16string const & strName, std::u16string const & strUri)
{
    if (m_nSlotsUsed == m_slots.size())
        m_slots.push_back(std::make_unique<Slot>());
    Slot & slot = *m_slots[m_nSlotsUsed];
    KeepText(slot.texts.strName, strName);
    KeepText(slot.texts.strNamespace, strUri);
    CXmlWriterContext * const pRecord =
        m_pContext != nullptr ? new (slot.abyRecord) CXmlWriterContext(slot.texts, m_pContext)
                              : new (slot.abyRecord) CXmlWriterContext(slot.texts,
                                    std::unique_ptr<CXmlWriterContext::CScope>(
                                        new CXmlWriterContext::CScope(m_strDefaultNamespace, m_mapNamespaces)));
    pRecord->m_bPooled = true;
    ++m_nSlotsUsed;
    m_pContext = pRecord;
    return *pRecord;
}

void CXmlWriter::PopContext() noexcept
{
    CXmlWriterContext * const pRecord = m_pContext;
    m_pContext = pRecord->DetachParent();
    if (!pRecord->Inherits())
        LeaveScope(*pRecord);
    if (pRecord->m_bPooled)
        --m_nSlotsUsed;
    CXmlWriterContext::Destroy(pRecord);
}

bool CXmlWriter::NeedsNoPrefix(CXmlWriterContext const & context, std::u16string const & strUri) noexcept
{
    return strUri.empty() || EqualText(strUri, context.GetDefaultNamespace());
}

/// Takes the declarations of a record that goes out of the index.
void CXmlWriter::LeaveScope(CXmlWriterContext const & record) noexcept
{
    CXmlWriterContext::CScope const & scope = *record.m_spScope;
    if (m_nIndexed != scope.nState)
        return;
    m_nIndexed = 0;
    if (scope.pOuter == nullptr)
        return;
    for (auto const & entry : scope.own)
        m_spIndex->Retract(entry.first);
    m_nIndexed = scope.pOuter->nState;
}

CNamespaceIndex * CXmlWriter::IndexOf(CXmlWriterContext const & context)
{
    CXmlWriterContext::CScope const & scope = *context.m_pScope->m_spScope;
    if (m_nIndexed == scope.nState)
        return m_spIndex.get();
    if (context.m_pChild != nullptr)
        return nullptr;
    // Mostly just the innermost scope is new.
    std::vector<CXmlWriterContext::CScope const *> scopes;
    auto const * pScope = &scope;
    for (; pScope != nullptr && (m_nIndexed == 0 || pScope->nState != m_nIndexed); pScope = pScope->pOuter)
        scopes.push_back(pScope);
    m_nIndexed = 0;
    if (m_spIndex == nullptr)
        m_spIndex = std::make_unique<CNamespaceIndex>();
    if (pScope == nullptr)
        m_spIndex->Clear();
    for (auto it = scopes.rbegin(); it != scopes.rend(); ++it)
        for (auto const & entry : (*it)->own)
            m_spIndex->Declare(entry.first, entry.second);
    m_nIndexed = scope.nState;
    return m_spIndex.get();
}

std::u16string const * CXmlWriter::FindKnownPrefix(CXmlWriterContext const & context, std::u16string const & strUri)
{
    CXmlWriterContext::CScope const & scope = *context.m_pScope->m_spScope;
    if (scope.pOuter != nullptr)
    {
        CNamespaceIndex const * const pIndex = IndexOf(context);
        return pIndex != nullptr ? pIndex->Find(strUri) : scope.Find(strUri);
    }
    if (m_lastAlias.nState == scope.nState && EqualText(m_lastAlias.pEntry->first, strUri))
        return &m_lastAlias.pEntry->second;
    auto const it = scope.own.find(strUri);
    if (it == scope.own.end())
        return nullptr;
    m_lastAlias = {&*it, scope.nState};
    return &it->second;
}

CXmlWriter::CPrefix CXmlWriter::FindPrefix(CXmlWriterContext & context, std::u16string const & strUri)
{
    if (std::u16string const * const pAlias = FindKnownPrefix(context, strUri))
        return {pAlias, false};
    CXmlWriterContext::CScope const & known = *context.m_pScope->m_spScope;
    bool const bFew = known.pOuter == nullptr && known.own.size() < kFewDeclarations;
    CNamespaceIndex * const pIndex = bFew ? nullptr : IndexOf(context);
    context.AddNamespace(
        strUri, pIndex != nullptr ? pIndex->FirstFreeAlias() : GenerateNamespaceAlias(context.GetNamespaces()));
    CXmlWriterContext::CScope const & scope = *context.m_spScope;
    auto const & entry = *scope.own.find(strUri);
    if (pIndex != nullptr)
    {
        // The namespace had no alias, so the index needs but this one.
        m_nIndexed = 0;
        pIndex->Declare(entry.first, entry.second);
        m_nIndexed = scope.nState;
    }
    return {&entry.second, true};
}

void CXmlWriter::CountPassingContext()
{
    CountPassing(g_contextName);
}

void CXmlWriter::ThrowNoElement()
{
    throw CQzException(u"No Element is open.");
}

void CXmlWriter::ThrowStartTagClosed()
{
    throw CQzException(u"Attributes must be added before elements");
}

} // namespace QzXmlLib16
