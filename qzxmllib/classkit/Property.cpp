#include "qzxmllib/classkit/Property.h"

#include "qzxmllib/support/QzException.h"

#include <utility>

namespace QzXmlLib16::ClassKit
{

namespace
{

char16_t const * OrEmpty(char16_t const * pszText) noexcept
{
    return pszText != nullptr ? pszText : u"";
}

} // namespace

Property::Property(
    Role eRole, char16_t const * pszName, Member const & member, void const * pMember, std::size_t nOctets)
    : m_eRole(eRole), m_member(member), m_strName(OrEmpty(pszName)),
      // xs:string keeps its white space, all other types collapse it.
      m_eRule(member.eType == ItemType_string && member.eKind == Member::Kind::Value
                  ? CWhitespaceUtils::WhitespaceRule_Preserve
                  : CWhitespaceUtils::WhitespaceRule_Collapse)
{
    if (nOctets > kPointerOctets)
        throw CQzInvalidParamException(u"The pointer to a member is too large");
    std::memcpy(m_abyPointer, pMember, nOctets);
}

template <class F>
Property Property::With(F && change) const
{
    Property copy(*this);
    change(copy);
    return copy;
}

Property Property::Namespace(char16_t const * pszUri) const
{
    return With(
        [&](Property & p)
        {
            p.m_strNamespace = OrEmpty(pszUri);
            p.m_bOwnNamespace = true;
        });
}

Property Property::Default(char16_t const * pszText) const
{
    return With([&](Property & p) { p.m_strDefault = OrEmpty(pszText); });
}

Property Property::Fixed(char16_t const * pszText) const
{
    return With([&](Property & p) { p.m_strDefault = p.m_strFixed = OrEmpty(pszText); });
}

Property Property::Optional() const
{
    return With([](Property & p) { p.m_member.bOptional = true; });
}

Property Property::Mandatory() const
{
    return With([](Property & p) { p.m_member.bOptional = false; });
}

Property Property::Occurs(int nMin, int nMax) const
{
    return With(
        [&](Property & p)
        {
            p.m_nMinOccurs = nMin;
            p.m_nMaxOccurs = nMax;
        });
}

Property Property::WhiteSpace(CWhitespaceUtils::WhitespaceRule eRule) const
{
    return With([&](Property & p) { p.m_eRule = eRule; });
}

Property Property::Pattern(char16_t const * pszPattern) const
{
    return With([&](Property & p) { p.m_facets.m_pattern = OrEmpty(pszPattern); });
}

Property Property::MinInclusive(char16_t const * pszText) const
{
    return With([&](Property & p) { p.m_facets.m_minInclusive = OrEmpty(pszText); });
}

Property Property::MaxInclusive(char16_t const * pszText) const
{
    return With([&](Property & p) { p.m_facets.m_maxInclusive = OrEmpty(pszText); });
}

Property Property::MinExclusive(char16_t const * pszText) const
{
    return With([&](Property & p) { p.m_facets.m_minExclusive = OrEmpty(pszText); });
}

Property Property::MaxExclusive(char16_t const * pszText) const
{
    return With([&](Property & p) { p.m_facets.m_maxExclusive = OrEmpty(pszText); });
}

Property Property::Length(int nUnits) const
{
    return With([&](Property & p) { p.m_facets.m_length = nUnits; });
}

Property Property::MinLength(int nUnits) const
{
    return With([&](Property & p) { p.m_facets.m_minLength = nUnits; });
}

Property Property::MaxLength(int nUnits) const
{
    return With([&](Property & p) { p.m_facets.m_maxLength = nUnits; });
}

Property Property::TotalDigits(int nDigits) const
{
    return With([&](Property & p) { p.m_facets.m_totalDigits = nDigits; });
}

Property Property::FractionDigits(int nDigits) const
{
    return With([&](Property & p) { p.m_facets.m_fractionDigits = nDigits; });
}

Property Property::CreateFrom(QzXmlLib16Data::CreateFromElementFunction pfnCreate) const
{
    return With([&](Property & p) { p.m_pfnCreateFrom = pfnCreate; });
}

} // namespace QzXmlLib16::ClassKit
