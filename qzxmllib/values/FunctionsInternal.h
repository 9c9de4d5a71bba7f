#pragma once

#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/ItemType.h"
#include "qzxmllib/values/QzVariant.h"

#include <string>

namespace QzXmlLib16
{

/// Whether any facet is set.
inline bool HasFacets(CPrimitiveRestrictions const & r) noexcept
{
    return (r.m_minLength & r.m_maxLength & r.m_length & r.m_totalDigits & r.m_fractionDigits) != -1 ||
           (r.m_minInclusive.size() | r.m_maxInclusive.size() | r.m_minExclusive.size() | r.m_maxExclusive.size() |
               r.m_pattern.size()) != 0;
}

/// Throws when the value in the variant lies outside the facets. pszName stands in the message.
void CheckPrimitiveVariant(
    char16_t const * pszName, QzVariant const & value, ItemType eType, CPrimitiveRestrictions const & restrictions);

/// The kind whose values pass that check whatever they are, or ItemType_Invalid: eType itself when no facet is set. An
/// entry works it out once.
inline ItemType KindWithoutCheck(ItemType eType, CPrimitiveRestrictions const & restrictions) noexcept
{
    bool const bChecked = eType >= ItemType_hexBinary && eType <= ItemType_integer && eType != ItemType_char;
    return bChecked && !HasFacets(restrictions) ? eType : ItemType_Invalid;
}

/// Tests a namespace against the list of an XML Schema wildcard, whose entries white space separates. strTarget is the
/// namespace that "##targetNamespace" and "##other" refer to.
bool IsNamespaceAllowed(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget);

/// Throws CQzInvalidNamespaceException when IsNamespaceAllowed is false.
void CheckNamespaceAllowed(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget);

} // namespace QzXmlLib16
