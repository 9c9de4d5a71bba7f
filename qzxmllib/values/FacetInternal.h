#pragma once

#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/ItemTraitsInternal.h"

#include <string_view>
#include <type_traits>

namespace QzXmlLib16
{

/// How a value is handed to its check.
template <ItemType eType, class Value = typename ItemTraits<eType>::Value>
using FacetParam = std::conditional_t<std::is_same_v<Value, std::u16string>, std::u16string_view,
    std::conditional_t<std::is_arithmetic_v<Value>, Value, Value const &>>;

/// Throws CQzException for a value outside the facets that count for its kind, and what the parse of a bound throws.
/// The name stands in the message. There is one for each kind that has a row in ItemTraits, but none for char.
template <ItemType eType>
void CheckPrimitiveValue(
    char16_t const * pszName, FacetParam<eType> value, CPrimitiveRestrictions const & restrictions);

} // namespace QzXmlLib16
