#pragma once

#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/ItemType.h"

#include <string>

namespace QzXmlLib16
{

class QzVariant;

/// Throws when the value in the variant lies outside the facets. pszName stands in the message.
void CheckPrimitiveVariant(
    char16_t const * pszName, QzVariant const & value, ItemType eType, CPrimitiveRestrictions const & restrictions);

/// Tests a namespace against the list of an XML Schema wildcard, whose entries white space separates. strTarget is the
/// namespace that "##targetNamespace" and "##other" refer to.
bool IsNamespaceAllowed(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget);

/// Throws CQzInvalidNamespaceException when IsNamespaceAllowed is false.
void CheckNamespaceAllowed(
    std::u16string const & strNamespace, std::u16string const & strList, std::u16string const & strTarget);

} // namespace QzXmlLib16
