#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace QzXmlLib16
{

/// A vector whose first item is taken away in constant time, so that a collection that is cleared item by item from the
/// front costs linear time.
template <class Value>
class CItemList
{
public:
    std::size_t GetCount() const noexcept { return m_items.size() - m_nFirst; }
    typename std::vector<Value>::const_reference operator[](std::size_t nIndex) const
    {
        return m_items[m_nFirst + nIndex];
    }

    /// nIndex is at most GetCount().
    void Insert(std::size_t nIndex, Value const & value)
    {
        m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(m_nFirst + nIndex), value);
    }

    /// nIndex is below GetCount().
    void Erase(std::size_t nIndex)
    {
        if (nIndex != 0)
        {
            m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(m_nFirst + nIndex));
            return;
        }
        m_items[m_nFirst++] = Value();
        // At most as many items move as have been taken away since the last time.
        if (m_nFirst >= GetCount())
        {
            m_items.erase(m_items.begin(), m_items.begin() + static_cast<std::ptrdiff_t>(m_nFirst));
            m_nFirst = 0;
        }
    }

private:
    std::vector<Value> m_items;
    std::size_t m_nFirst = 0; ///< place of the first item; the places in front are used up
};

} // namespace QzXmlLib16
