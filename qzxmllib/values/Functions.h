#pragma once

#include "qzxmllib/support/Export.h"

#include <cstdint>
#include <string>

namespace QzXmlLib16
{

/// The facets of a simple type (XML Schema Part 2). Enumerations and whiteSpace are kept elsewhere.
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
};

} // namespace QzXmlLib16
