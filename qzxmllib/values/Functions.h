#pragma once

#include "qzxmllib/support/Export.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace QzXmlLib16
{

struct CFacetCache;

/// The facets of a simple type (XML Schema Part 2). Enumerations and whiteSpace are kept elsewhere. An entry of a table
/// checks them when the value is written and not when it is read; a collection checks each value that is added, also by
/// reading. Any number of threads may check values against one object at the same time, as long as none changes it.
class QZXMLLIB_API CPrimitiveRestrictions
{
public:
    /// No facet is set.
    CPrimitiveRestrictions();
    /// An empty or null text and a number of -1 mean that the facet is not set. Bounds are lexical text.
    CPrimitiveRestrictions(char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
        char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
        char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits);
    CPrimitiveRestrictions(CPrimitiveRestrictions const & other);
    CPrimitiveRestrictions & operator=(CPrimitiveRestrictions const & other);
    virtual ~CPrimitiveRestrictions();

    std::u16string m_pattern;
    std::int32_t m_minLength = -1;
    std::int32_t m_maxLength = -1;
    std::u16string m_minInclusive;
    std::u16string m_maxInclusive;
    std::u16string m_minExclusive;
    std::u16string m_maxExclusive;
    std::int32_t m_length = -1;
    std::int32_t m_totalDigits = -1;
    std::int32_t m_fractionDigits = -1;

private:
    friend struct CFacetCache;

    /// What the first check has worked out of the texts. Not copied.
    mutable std::atomic<CFacetCache const *> m_pCache{nullptr};
};

} // namespace QzXmlLib16
