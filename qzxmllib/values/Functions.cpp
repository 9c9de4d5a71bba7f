#include "qzxmllib/values/Functions.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/FacetCacheInternal.h"
#include "qzxmllib/values/FunctionsInternal.h"
#include "qzxmllib/values/WhitespaceUtils.h"

#include <string_view>

namespace QzXmlLib16
{

namespace
{

std::u16string TextOrEmpty(char16_t const * pText)
{
    return pText != nullptr ? std::u16string(pText) : std::u16string();
}

bool TokenAccepts(std::u16string_view token, std::u16string const & strNamespace, std::u16string const & strTarget)
{
    if (token == u"##any")
        return true;
    if (token == u"##other")
        return strNamespace != strTarget;
    if (token == u"##local")
        return strNamespace.empty();
    if (token == u"##targetNamespace")
        return strNamespace == strTarget;
    return strNamespace.empty() || strNamespace == token;
}

/// Takes the next token off a list, which XML Schema splits at white space. Empty when none is left.
std::u16string_view TakeToken(std::u16string_view & list)
{
    while (!list.empty() && CWhitespaceUtils::IsWhiteSpace(list[0]))
        list.remove_prefix(1);
    std::size_t nUnits = 0;
    while (nUnits < list.size() && !CWhitespaceUtils::IsWhiteSpace(list[nUnits]))
        ++nUnits;
    std::u16string_view const token = list.substr(0, nUnits);
    list.remove_prefix(nUnits);
    return token;
}

} // namespace

CPrimitiveRestrictions::CPrimitiveRestrictions() = default;

CPrimitiveRestrictions::CPrimitiveRestrictions(CPrimitiveRestrictions const & other)
    : m_pattern(other.m_pattern), m_minLength(other.m_minLength), m_maxLength(other.m_maxLength),
      m_minInclusive(other.m_minInclusive), m_maxInclusive(other.m_maxInclusive), m_minExclusive(other.m_minExclusive),
      m_maxExclusive(other.m_maxExclusive), m_length(other.m_length), m_totalDigits(other.m_totalDigits),
      m_fractionDigits(other.m_fractionDigits)
{
}

CPrimitiveRestrictions & CPrimitiveRestrictions::operator=(CPrimitiveRestrictions const & other)
{
    if (this == &other)
        return *this;
    CFacetCache::Drop(*this);
    m_pattern = other.m_pattern;
    m_minLength = other.m_minLength;
    m_maxLength = other.m_maxLength;
    m_minInclusive = other.m_minInclusive;
    m_maxInclusive = other.m_maxInclusive;
    m_minExclusive = other.m_minExclusive;
    m_maxExclusive = other.m_maxExclusive;
    m_length = other.m_length;
    m_totalDigits = other.m_totalDigits;
    m_fractionDigits = other.m_fractionDigits;
    return *this;
}

CPrimitiveRestrictions::~CPrimitiveRestrictions()
{
    CFacetCache::Drop(*this);
}

CPrimitiveRestrictions::CPrimitiveRestrictions(char16_t const * pattern, std::int32_t minLength, std::int32_t maxLength,
    char16_t const * minInclusive, char16_t const * maxInclusive, char16_t const * minExclusive,
    char16_t const * maxExclusive, std::int32_t length, std::int32_t totalDigits, std::int32_t fractionDigits)
    : m_pattern(TextOrEmpty(pattern)), m_minLength(minLength), m_maxLength(maxLength),
      m_minInclusive(TextOrEmpty(minInclusive)), m_maxInclusive(TextOrEmpty(maxInclusive)),
      m_minExclusive(TextOrEmpty(minExclusive)), m_maxExclusive(TextOrEmpty(maxExclusive)), m_length(length),
      m_totalDigits(totalDigits), m_fractionDigits(fractionDigits)
{
}

bool IsNamespaceAllowed(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget)
{
    std::u16string_view rest(strList);
    std::u16string_view token = TakeToken(rest);
    // A list without any token counts as one empty token.
    do
    {
        if (TokenAccepts(token, strNamespace, strTarget))
            return true;
        token = TakeToken(rest);
    } while (!token.empty());
    return false;
}

void CheckNamespaceAllowed(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget)
{
    if (!IsNamespaceAllowed(strNamespace, strList, strTarget))
        throw CQzInvalidNamespaceException(
            FormatString(
                u"Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s].",
                strNamespace, strList, strTarget),
            std::u16string());
}

} // namespace QzXmlLib16
