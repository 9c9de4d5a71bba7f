#pragma once

#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/support/QzException.h"

#include <cstddef>
#include <iterator>

namespace QzXmlLib16
{

/// Walks the items of a collection in order. It holds no count: removing the item it stands on makes it invalid.
template <class T>
class CQzIterator
{
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = T *;
    using reference = T &;

    /// The end of any collection.
    CQzIterator() noexcept = default;
    explicit CQzIterator(CNode * pNode) noexcept : m_pNode(pNode) {}

    /// Requires an item.
    T & operator*() const { return *operator->(); }
    T * operator->() const { return static_cast<T *>(m_pNode->m_spItem.Get()); }

    bool operator==(CQzIterator const & other) const noexcept { return m_pNode == other.m_pNode; }
    bool operator!=(CQzIterator const & other) const noexcept { return m_pNode != other.m_pNode; }

    /// Throws CQzException at the end.
    CQzIterator & operator++()
    {
        if (m_pNode == nullptr)
            throw CQzException(u"No More Elements in the Collection");
        m_pNode = m_pNode->m_pNext;
        return *this;
    }
    CQzIterator operator++(int)
    {
        CQzIterator const before = *this;
        ++*this;
        return before;
    }

private:
    CNode * m_pNode = nullptr;
};

} // namespace QzXmlLib16
