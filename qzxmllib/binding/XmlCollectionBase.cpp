#include "qzxmllib/binding/XmlCollectionBase.h"

#include "qzxmllib/binding/TreeMemory.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

namespace QzXmlLib16
{

namespace
{

/// Fetches the item that comes next and the link behind it while the present item is at work. What the item points to
/// mostly was made right behind it, so the fetch goes on beyond the object itself.
void FetchNext(CNode const & node)
{
    constexpr std::size_t kLine = 64;
    constexpr std::size_t kFetched = 36 * kLine;
    __builtin_prefetch(node.m_pNext);
    auto const * const pItem = reinterpret_cast<char const *>(node.m_spItem.Get());
    for (std::size_t n = 0; n < kFetched; n += kLine)
        __builtin_prefetch(pItem + n);
}

[[noreturn]] void ThrowNotFound()
{
    throw CQzInvalidParamException(u"The object was not found in the collection");
}

} // namespace

CXmlCollectionBase::CXmlCollectionBase() = default;

CXmlCollectionBase::CXmlCollectionBase(
    char16_t const * elementName, char16_t const * namespaceUri, int minOccurs, int maxOccurs)
    : m_strNamespace(OrEmpty(namespaceUri)), m_nMinOccurs(minOccurs), m_nMaxOccurs(maxOccurs)
{
    SetElementName(elementName);
}

CXmlCollectionBase::CXmlCollectionBase(CXmlCollectionBase const & other)
    : CXmlObjectBase(other), m_strNamespace(other.m_strNamespace), m_nMinOccurs(other.m_nMinOccurs),
      m_nMaxOccurs(other.m_nMaxOccurs)
{
}

CXmlCollectionBase & CXmlCollectionBase::operator=(CXmlCollectionBase const & other)
{
    CXmlObjectBase::operator=(other);
    m_strNamespace = other.m_strNamespace;
    m_nMinOccurs = other.m_nMinOccurs;
    m_nMaxOccurs = other.m_nMaxOccurs;
    return *this;
}

CXmlCollectionBase::~CXmlCollectionBase() = default;

std::u16string CXmlCollectionBase::GetTargetNamespace()
{
    throw CQzException(u"CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program "
                       u"logic error)");
}

std::u16string CXmlCollectionBase::GetNamespace()
{
    return m_strNamespace;
}

void CXmlCollectionBase::ValidateCount(CSerializationContext const & ctx) const
{
    if (ctx.GetIgnoreInvalidCollectionCounts())
        return;
    int const nCount = GetCount();
    if (m_nMaxOccurs != -1 && nCount > m_nMaxOccurs)
        throw CQzValidationException(
            FormatString(u"The Maximum number of [%s] elements allowed in this collection is %d", m_strElementName,
                m_nMaxOccurs),
            std::u16string());
    if (nCount < m_nMinOccurs)
        throw CQzValidationException(
            FormatString(u"The Minimum number of [%s] elements allowed in this collection is %d", m_strElementName,
                m_nMinOccurs),
            std::u16string());
}

bool CXmlCollectionBase::IsValidCount(CSerializationContext const & ctx) const
{
    if (ctx.GetIgnoreInvalidCollectionCounts())
        return true;
    int const nCount = GetCount();
    return (m_nMaxOccurs == -1 || nCount <= m_nMaxOccurs) && nCount >= m_nMinOccurs;
}

bool CXmlCollectionBase::DoesElementNameMatch(
    CSerializationContext const & ctx, CXmlElement const * pElement, char16_t const * name, char16_t const * ns) const
{
    // The length of a text that is known makes it a matter of a few steps.
    if (name != m_strElementName.c_str() || ns != m_strNamespace.c_str())
        return CXmlObjectBase::DoesElementNameMatch(ctx, pElement, name, ns);
    return EqualText(pElement->GetLocalName(), m_strElementName) &&
           (ctx.GetIgnoreNamespaces() || EqualText(pElement->GetNamespaceURI(), m_strNamespace));
}

void CXmlCollectionBase::AddEventListener(IEventSink * pSink)
{
    m_listeners.push_back(pSink);
}

void CXmlCollectionBase::RemoveEventListener(IEventSink * pSink)
{
    m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), pSink), m_listeners.end());
}

template <class F>
void CXmlCollectionBase::ForEachListener(F const & fire)
{
    if (m_listeners.empty())
        return;
    // A listener may add and remove listeners: the walk goes over those that stood at its start and are still there.
    std::vector<IEventSink *> const snapshot = m_listeners;
    for (IEventSink * pSink : snapshot)
        if (std::find(m_listeners.begin(), m_listeners.end(), pSink) != m_listeners.end())
            fire(pSink);
}

void CXmlCollectionBase::FireOnCollectionChange()
{
    ForEachListener([this](IEventSink * pSink) { FireOnCollectionChangeEvent(pSink, this); });
}

void CXmlCollectionBase::FireOnCollectionAdd(void * pData)
{
    ForEachListener([&](IEventSink * pSink) { FireOnCollectionAddEvent(pSink, this, pData); });
}

void CXmlCollectionBase::FireOnCollectionAddComplete(void * pData)
{
    ForEachListener([&](IEventSink * pSink) { FireOnCollectionAddCompleteEvent(pSink, this, pData); });
}

void CXmlCollectionBase::FireOnCollectionRemove(int nIndex)
{
    ForEachListener([&](IEventSink * pSink) { FireOnCollectionRemoveEvent(pSink, this, nIndex); });
}

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int nIndex)
{
    ForEachListener([&](IEventSink * pSink) { FireOnCollectionRemoveCompleteEvent(pSink, this, nIndex); });
}

/// The links follow.
struct CXmlCollection::NodeBlock
{
    NodeBlock * pNext;
};

CNode * CXmlCollection::TakeNode()
{
    if (m_pFreeNodes == nullptr)
        AddBlock();
    return std::exchange(m_pFreeNodes, m_pFreeNodes->m_pNext);
}

void CXmlCollection::GiveBackNode(CNode * pNode) noexcept
{
    pNode->m_pNext = m_pFreeNodes;
    m_pFreeNodes = pNode;
}

void CXmlCollection::AddBlock()
{
    // Every link is in use: there will be twice as many. In a tree of open content most collections are very small.
    constexpr int kMostNodes = 32;
    int const nNodes = std::clamp(m_nCount, CTreeMemory::IsShared() ? 1 : 4, kMostNodes);
    void * const pMemory =
        CTreeMemory::operator new(sizeof(NodeBlock) + static_cast<std::size_t>(nNodes) * sizeof(CNode));
    m_pBlocks = new (pMemory) NodeBlock{m_pBlocks};
    auto * const pNodes = reinterpret_cast<CNode *>(m_pBlocks + 1);
    for (int i = nNodes; i-- != 0;)
        GiveBackNode(new (pNodes + i) CNode);
}

void CXmlCollection::FreeBlocks() noexcept
{
    while (m_pBlocks != nullptr)
        CTreeMemory::operator delete(std::exchange(m_pBlocks, m_pBlocks->pNext));
}

CXmlCollection::CXmlCollection() = default;

CXmlCollection::CXmlCollection(
    char16_t const * elementName, char16_t const * namespaceUri, int minOccurs, int maxOccurs)
    : CXmlCollectionBase(elementName, namespaceUri, minOccurs, maxOccurs)
{
}

CXmlCollection::~CXmlCollection()
{
    try
    {
        if (!m_listeners.empty())
            CXmlCollection::Clear();
    }
    catch (...)
    {
        // A listener that refuses cannot keep the items of a collection that goes.
        m_listeners.clear();
    }
    while (m_pHead != nullptr)
    {
        if (CNode const * const pNext = m_pHead->m_pNext)
            FetchNext(*pNext);
        Unlink(m_pHead);
    }
    FreeBlocks();
}

void CXmlCollection::AttributesToXml_Int(CXmlWriter * pWriter, CSerializationContext const & ctx) const
{
    for (CNode const * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
        CXmlObjectBase::AttributesToXml_Int(pNode->m_spItem->GetBase(), pWriter, ctx);
}

void CXmlCollection::ItemsToXml(
    CXmlWriter * pWriter, char16_t const * namespaceUri, CSerializationContext const & ctx) const
{
    for (CNode const * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
    {
        if (CNode const * const pNext = pNode->m_pNext)
            FetchNext(*pNext);
        CXmlObjectBase::ToXml_Int(pNode->m_spItem, pWriter, false, namespaceUri, ctx, false);
    }
}

template <class F>
void CXmlCollection::Insert(CSmartPtr<CXmlObjectBase> spItem, F const & findNext)
{
    // A listener may take and drop counts of the new item, so two are held while there are listeners.
    bool const bListeners = !m_listeners.empty();
    CXmlObjectBase * const pItem = spItem;
    if (bListeners)
        FireOnCollectionAdd(pItem);
    CNode * const pNext = findNext();
    CNode * const pNew = TakeNode();
    if (bListeners)
        pNew->m_spItem = pItem;
    else
        pNew->m_spItem = std::move(spItem);
    CNode * const pPrev = pNext != nullptr ? pNext->m_pPrev : m_pTail;
    pNew->m_pNext = pNext;
    pNew->m_pPrev = pPrev;
    (pPrev != nullptr ? pPrev->m_pNext : m_pHead) = pNew;
    (pNext != nullptr ? pNext->m_pPrev : m_pTail) = pNew;
    ++m_nCount;
    if (!bListeners)
        return;
    FireOnCollectionAddComplete(pItem);
    FireOnCollectionChange();
}

void CXmlCollection::AppendItem(CXmlObjectBase * pItem)
{
    TakeItem(pItem);
}

void CXmlCollection::TakeItem(CSmartPtr<CXmlObjectBase> spItem)
{
    Insert(std::move(spItem), [] { return static_cast<CNode *>(nullptr); });
}

void CXmlCollection::PrependItem(CXmlObjectBase * pItem)
{
    Insert(pItem, [this] { return m_pHead; });
}

/// Holds an item while listeners are called, which may drop it. An object that is no item is not held: it may live on
/// the stack.
CSmartPtr<CXmlObjectBase> CXmlCollection::HoldItem(CXmlObjectBase const * pItem) const
{
    CNode const * const pNode = m_listeners.empty() ? nullptr : FindNode(pItem);
    return pNode != nullptr ? pNode->m_spItem : CSmartPtr<CXmlObjectBase>();
}

void CXmlCollection::AddAfterItem(CXmlObjectBase const * pExisting, CXmlObjectBase * pItem)
{
    if (pExisting == nullptr)
        return PrependItem(pItem);
    CSmartPtr<CXmlObjectBase> const spHeld = HoldItem(pExisting);
    Insert(pItem, [&] { return GetNodeForItem(pExisting)->m_pNext; });
}

void CXmlCollection::AddBeforeItem(CXmlObjectBase const * pExisting, CXmlObjectBase * pItem)
{
    if (pExisting == nullptr)
        return AppendItem(pItem);
    CSmartPtr<CXmlObjectBase> const spHeld = HoldItem(pExisting);
    Insert(pItem, [&] { return GetNodeForItem(pExisting); });
}

void CXmlCollection::AddItemAt(int nIndex, CXmlObjectBase * pItem)
{
    if (nIndex < 0 || nIndex > m_nCount)
        throw CQzInvalidParamException(u"Index out of range");
    if (nIndex == m_nCount)
        AppendItem(pItem);
    else
        Insert(pItem, [&] { return GetNodeAtIndex(nIndex); });
}

void CXmlCollection::Unlink(CNode * pNode) noexcept
{
    (pNode->m_pPrev != nullptr ? pNode->m_pPrev->m_pNext : m_pHead) = pNode->m_pNext;
    (pNode->m_pNext != nullptr ? pNode->m_pNext->m_pPrev : m_pTail) = pNode->m_pPrev;
    --m_nCount;
    // The item goes last: what its destructor does finds a collection that is whole.
    CSmartPtr<CXmlObjectBase> const spItem = std::move(pNode->m_spItem);
    GiveBackNode(pNode);
}

void CXmlCollection::RemoveNode(CNode * pNode)
{
    if (m_listeners.empty())
        return Unlink(pNode);
    CSmartPtr<CXmlObjectBase> const spItem = pNode->m_spItem;
    FireOnCollectionRemove(-1);
    // A listener may have taken the node away, which then may hold another item by now.
    CNode * pFound = m_pHead;
    while (pFound != nullptr && (pFound != pNode || pFound->m_spItem.Get() != spItem.Get()))
        pFound = pFound->m_pNext;
    if (pFound == nullptr)
        ThrowNotFound();
    Unlink(pFound);
    FireOnCollectionRemoveComplete(-1);
    FireOnCollectionChange();
}

void CXmlCollection::Remove(int nIndex)
{
    RemoveNode(GetNodeAtIndex(nIndex));
}

void CXmlCollection::Clear()
{
    // A listener that adds an item for each one that goes would never let this end.
    constexpr std::int64_t kMostAdded = 1000000;
    for (std::int64_t nLeft = m_nCount + kMostAdded; m_nCount >= 1; --nLeft)
    {
        if (nLeft == 0)
            throw CQzInvalidStateException(u"The collection can not be cleared, a listener adds items again and again");
        Remove(0);
    }
    FreeBlocks();
    m_firstNode.m_pNext = nullptr;
    m_pFreeNodes = &m_firstNode;
}

CNode * CXmlCollection::GetNodeAtIndex(int nIndex) const
{
    if (nIndex < 0 || nIndex > GetCount() - 1)
        throw CQzInvalidParamException(FormatString(u"Index %d is out of range, use 0 - %d", nIndex, GetCount() - 1));
    CNode * pNode = m_pHead;
    for (int i = 0; i < nIndex; ++i)
        pNode = pNode->m_pNext;
    return pNode;
}

CNode * CXmlCollection::FindNode(CXmlObjectBase const * pItem) const
{
    for (CNode * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
        if (pNode->m_spItem->GetBase() == pItem->GetBase())
            return pNode;
    return nullptr;
}

CNode * CXmlCollection::GetNodeForItem(CXmlObjectBase const * pItem) const
{
    CNode * const pNode = FindNode(pItem);
    if (pNode == nullptr)
        ThrowNotFound();
    return pNode;
}

} // namespace QzXmlLib16
