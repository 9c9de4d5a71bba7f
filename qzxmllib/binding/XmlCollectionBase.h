#pragma once

#include "qzxmllib/binding/XmlObjectBase.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/SmartPtr.h"

#include <cstdint>
#include <string>
#include <vector>

namespace QzXmlLib16
{

/// What every collection shares: the name and namespace of its items' elements, occurrence limits and listeners. A
/// collection has no element of its own in a document; its items are the repeated elements. One thread at a time.
class QZXMLLIB_API CXmlCollectionBase : public CXmlObjectBase
{
public:
    using CXmlObjectBase::GetBase;
    CXmlObjectBase * GetBase() override { return this; }
    std::u16string GetNamespace() override;

    virtual int GetCount() const = 0;
    /// Removes all items.
    virtual void Clear() = 0;
    /// Throws CQzInvalidParamException for an index out of range.
    virtual void Remove(int nIndex) = 0;
    /// Throws CQzValidationException when the number of items lies outside the limits, unless the context ignores it.
    virtual void ValidateCount(CSerializationContext const & ctx) const;
    /// The same test as a result.
    virtual bool IsValidCount(CSerializationContext const & ctx) const;

    int GetMinOccurs() const { return m_nMinOccurs; }
    /// -1 means no upper limit.
    int GetMaxOccurs() const { return m_nMaxOccurs; }

    /// Adds a listener behind the others; the same one may be added more than once. It is not owned and must be removed
    /// before it goes.
    void AddEventListener(IEventSink * pSink);
    /// Removes every entry of the listener.
    void RemoveEventListener(IEventSink * pSink);

protected:
    CXmlCollectionBase();
    /// Null texts count as empty.
    CXmlCollectionBase(char16_t const * elementName, char16_t const * namespaceUri, int minOccurs, int maxOccurs);
    /// Copies names and limits; listeners stay with the collection they were added to.
    CXmlCollectionBase(CXmlCollectionBase const & other);
    CXmlCollectionBase & operator=(CXmlCollectionBase const & other);
    ~CXmlCollectionBase() override;

    /// A collection has no target namespace: throws CQzException.
    std::u16string GetTargetNamespace() override;

    /// The same answer as that of the base. It comes sooner when name and ns are the collection's own texts.
    bool DoesElementNameMatch(CSerializationContext const & ctx, CXmlElement const * pElement, char16_t const * name,
        char16_t const * ns) const;

    void FireOnCollectionChange();
    void FireOnCollectionAdd(void * pData);
    void FireOnCollectionAddComplete(void * pData);
    void FireOnCollectionRemove(int nIndex);
    void FireOnCollectionRemoveComplete(int nIndex);

    /// Sets the limits that ValidateCount tests; -1 means no upper limit.
    void SetOccurs(int nMinOccurs, int nMaxOccurs)
    {
        m_nMinOccurs = nMinOccurs;
        m_nMaxOccurs = nMaxOccurs;
    }

    std::u16string m_strNamespace;

private:
    friend class CXmlCollection;

    template <class F>
    void ForEachListener(F const & fire);

    std::vector<IEventSink *> m_listeners;
    std::int32_t m_nMinOccurs = 0;
    std::int32_t m_nMaxOccurs = -1;
};

/// One link of a CXmlCollection, which owns it.
struct CNode
{
    CSmartPtr<CXmlObjectBase> m_spItem;
    CNode * m_pNext = nullptr;
    CNode * m_pPrev = nullptr;
};

/// A collection of objects: a doubly linked list that holds one count of each item. Every change fires its events in
/// the same order: one before the change, which a listener can refuse by throwing, then one behind it, then
/// MsgType_CollectionChange.
///
/// A class for one kind of item adds typed access and two operations: ToXml_Int, which writes the items, and
/// FromXml_Int, which reads the run of elements that have the name of the collection and gives the first behind it. The
/// table entry of the collection checks the occurrence limits.
class QZXMLLIB_API CXmlCollection : public CXmlCollectionBase
{
public:
    CXmlCollection(CXmlCollection const &) = delete;
    CXmlCollection & operator=(CXmlCollection const &) = delete;

    int GetCount() const override { return m_nCount; }
    /// Removes the items one by one from the front, each with its events. Throws CQzInvalidStateException if listeners
    /// have added a million items meanwhile.
    void Clear() override;
    void Remove(int nIndex) override;

protected:
    CXmlCollection();
    CXmlCollection(char16_t const * elementName, char16_t const * namespaceUri, int minOccurs, int maxOccurs);
    /// Removes the items with their events, so listeners must still be alive.
    ~CXmlCollection() override;

    void AttributesToXml_Int(CXmlWriter * pWriter, CSerializationContext const & ctx) const override;
    /// Writes the items in turn, each by its own ToXml_Int: what ToXml_Int of a collection of classes consists of.
    void ItemsToXml(CXmlWriter * pWriter, char16_t const * namespaceUri, CSerializationContext const & ctx) const;

    void AppendItem(CXmlObjectBase * pItem);
    /// Takes over the count of the caller.
    void TakeItem(CSmartPtr<CXmlObjectBase> spItem);
    void PrependItem(CXmlObjectBase * pItem);
    /// With a null pExisting the item becomes the first.
    void AddAfterItem(CXmlObjectBase const * pExisting, CXmlObjectBase * pItem);
    /// With a null pExisting the item becomes the last.
    void AddBeforeItem(CXmlObjectBase const * pExisting, CXmlObjectBase * pItem);
    /// nIndex is counted from 0; GetCount() appends. Throws CQzInvalidParamException outside that range.
    void AddItemAt(int nIndex, CXmlObjectBase * pItem);
    /// Throws CQzInvalidParamException if a listener of the remove event has taken the node away.
    void RemoveNode(CNode * pNode);
    /// Throws CQzInvalidParamException for an index out of range.
    CNode * GetNodeAtIndex(int nIndex) const;
    /// The first node that holds this very object. Throws CQzInvalidParamException when there is none.
    CNode * GetNodeForItem(CXmlObjectBase const * pItem) const;

    CNode * m_pHead = nullptr;
    CNode * m_pTail = nullptr;
    std::int32_t m_nCount = 0;

private:
    /// Adds pItem in front of what findNext gives when the add event has passed; null stands for the end.
    template <class F>
    void Insert(CSmartPtr<CXmlObjectBase> spItem, F const & findNext);

    void Unlink(CNode * pNode) noexcept;
    CSmartPtr<CXmlObjectBase> HoldItem(CXmlObjectBase const * pItem) const;
    /// The first node that holds this very object, or null.
    CNode * FindNode(CXmlObjectBase const * pItem) const;

    /// The first link lies in the collection, the others side by side in blocks. Those that are free wait for the next
    /// items until the collection is cleared or goes.
    struct NodeBlock;
    CNode * TakeNode();
    void GiveBackNode(CNode * pNode) noexcept;
    void AddBlock();
    void FreeBlocks() noexcept;

    CNode m_firstNode;
    CNode * m_pFreeNodes = &m_firstNode;
    NodeBlock * m_pBlocks = nullptr;
};

} // namespace QzXmlLib16
