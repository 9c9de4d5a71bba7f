#include "qzxmllib/document/XmlWriter.h"

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

/// Limits of the number of aliases remembered by hash; between them it follows the size of the map.
constexpr std::size_t kFewestAliasSlots = 16;
constexpr std::size_t kMostAliasSlots = 4096;

constexpr std::size_t kLetters = 26;

/// URIs differ mostly at their ends.
std::size_t HashUri(std::u16string const & strUri) noexcept
{
    std::size_t nHash = strUri.size();
    for (std::size_t nAt = strUri.size() - std::min<std::size_t>(strUri.size(), 5); nAt < strUri.size(); ++nAt)
        nHash = nHash * 31 + strUri[nAt];
    return nHash;
}

/// The names of elements at one level are often those of the last one there.
void KeepText(std::u16string & strKept, std::u16string const & strText)
{
    if (!EqualText(strKept, strText))
        strKept.assign(strText);
}

/// The number of a text of nLetters capital letters among all of that length, or nNone for any other text.
std::size_t AliasNumber(std::u16string const & strAlias, std::size_t nLetters, std::size_t nNone) noexcept
{
    if (strAlias.size() != nLetters)
        return nNone;
    std::size_t nNumber = 0;
    for (char16_t const c : strAlias)
    {
        if (c < u'A' || c > u'Z')
            return nNone;
        nNumber = nNumber * kLetters + (c - u'A');
    }
    return nNumber;
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
    : strDefaultNamespace(strDefault), namespaces(map)
{
    Renew();
}

void CXmlWriter::CXmlWriterContext::CScope::Renew() noexcept
{
    static std::atomic<std::uint64_t> s_nLastVersion{0};
    nVersion = s_nLastVersion.fetch_add(1, std::memory_order_relaxed) + 1;
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
    m_spScope->namespaces[strUri] = strAlias;
    m_spScope->Renew();
}

std::u16string const & CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(std::u16string const & strNamespace)
{
    CScope & scope = *m_pScope->m_spScope;
    scope.Renew();
    return scope.namespaces[strNamespace];
}

/// Gives the record declarations of its own, which begin as a copy of those that it reads.
void CXmlWriter::CXmlWriterContext::OwnScope(bool bCopyDefaultNamespace)
{
    if (!Inherits())
        return;
    m_spScope.reset(new CScope(bCopyDefaultNamespace ? GetDefaultNamespace() : std::u16string(), GetNamespaces()));
    CXmlWriterContext const * const pOldScope = m_pScope;
    for (CXmlWriterContext * p = this; p != nullptr && p->m_pScope == pOldScope; p = p->m_pChild)
        p->m_pScope = this;
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
    std::size_t nCount = kLetters;
    for (std::size_t nLetters = 2;; ++nLetters)
    {
        nCount *= kLetters;
        // One more place takes the aliases that are none of these.
        std::vector<bool> taken(nCount + 1);
        for (auto const & entry : namespaces)
            taken[AliasNumber(entry.second, nLetters, nCount)] = true;
        auto nNumber = static_cast<std::size_t>(std::find(taken.begin(), taken.end(), false) - taken.begin());
        if (nNumber >= nCount)
            continue;
        std::u16string strAlias(nLetters, u'A');
        for (std::size_t nAt = nLetters; nAt-- > 0; nNumber /= kLetters)
            strAlias[nAt] = static_cast<char16_t>(u'A' + nNumber % kLetters);
        return strAlias;
    }
}

void CXmlWriter::SetArrayState(std::int32_t eState) noexcept
{
    if (m_pContext == nullptr)
        return;
    std::int32_t & eNow = m_pContext->m_eArrayState;
    if (eState == 1 && eNow >= 2)
        eState = 4; // an array, finished or holding the collection's items, is still to be closed
    else if (eState == 3 && eNow < 2)
        eState = 0; // no array is open
    eNow = eState;
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
        ++m_nScopeGeneration;
    if (pRecord->m_bPooled)
        --m_nSlotsUsed;
    CXmlWriterContext::Destroy(pRecord);
}

bool CXmlWriter::NeedsNoPrefix(CXmlWriterContext const & context, std::u16string const & strUri) noexcept
{
    return strUri.empty() || EqualText(strUri, context.GetDefaultNamespace());
}

std::u16string const * CXmlWriter::FindKnownPrefix(CXmlWriterContext const & context, std::u16string const & strUri)
{
    CNamespaceMap const & namespaces = context.GetNamespaces();
    auto const holds = [&](LastAlias const & last) {
        return last.pMap == &namespaces && last.nGeneration == m_nScopeGeneration &&
               EqualText(last.pEntry->first, strUri);
    };
    if (holds(m_lastAlias))
        return &m_lastAlias.pEntry->second;
    std::size_t nSlots = kFewestAliasSlots;
    while (nSlots < 2 * namespaces.size() && nSlots < kMostAliasSlots)
        nSlots *= 2;
    if (m_lastAliases.size() < nSlots)
        m_lastAliases.assign(nSlots, LastAlias());
    LastAlias & last = m_lastAliases[HashUri(strUri) & (m_lastAliases.size() - 1)];
    if (!holds(last))
    {
        auto const it = namespaces.find(strUri);
        if (it == namespaces.end())
            return nullptr;
        last = {&*it, &namespaces, m_nScopeGeneration};
    }
    m_lastAlias = last;
    return &last.pEntry->second;
}

CXmlWriter::CPrefix CXmlWriter::FindPrefix(CXmlWriterContext & context, std::u16string const & strUri)
{
    if (std::u16string const * const pAlias = FindKnownPrefix(context, strUri))
        return {pAlias, false};
    context.AddNamespace(strUri, GenerateNamespaceAlias(context.GetNamespaces()));
    return {&context.GetNamespaces().find(strUri)->second, true};
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
