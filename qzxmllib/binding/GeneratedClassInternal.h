#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

class CXmlAttribute;
class CXmlElement;
class CXmlGeneratedClass;
class INillable;

// Attributes that neither a class nor a primitive element can take.
[[noreturn]] void ThrowNotNillable(CXmlElement const & element);
[[noreturn]] void ThrowBadNil(CXmlAttribute const & attribute);
[[noreturn]] void ThrowUnexpectedAttribute(CXmlAttribute const & attribute);

/// The nillable side of an object, or null.
INillable * FindNillable(CXmlGeneratedClass * pObject);

/// What the text of xsi:nil says, compared without regard to case.
enum NilText
{
    NilText_False,
    NilText_True,
    NilText_Other
};

NilText ParseNilText(std::u16string_view text);

/// One flag for each entry of a table. The first 64 need no heap.
class CFlagList
{
public:
    explicit CFlagList(std::size_t nFlags)
    {
        if (nFlags > 64)
            m_spMore = std::make_unique<std::vector<bool>>(nFlags - 64);
    }
    bool Get(std::size_t i) const { return i < 64 ? ((m_first >> i) & 1) != 0 : (*m_spMore)[i - 64]; }
    void Set(std::size_t i)
    {
        if (i < 64)
            m_first |= std::uint64_t(1) << i;
        else
            (*m_spMore)[i - 64] = true;
    }

private:
    std::uint64_t m_first = 0;
    std::unique_ptr<std::vector<bool>> m_spMore;
};

/// Number of entries in front of the null pointer that ends a table.
template <class T>
std::size_t CountEntries(T * const * ppTable)
{
    std::size_t nCount = 0;
    while (ppTable[nCount] != nullptr)
        ++nCount;
    return nCount;
}

} // namespace QzXmlLib16
