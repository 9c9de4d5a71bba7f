#include "generator/model/Model.h"

#include <tuple>

namespace QzXmlGen
{

bool operator<(SchemaName const & left, SchemaName const & right)
{
    return std::tie(left.strNamespaceUri, left.strLocal) < std::tie(right.strNamespaceUri, right.strLocal);
}

bool operator==(SchemaName const & left, SchemaName const & right)
{
    return left.strLocal == right.strLocal && left.strNamespaceUri == right.strNamespaceUri;
}

bool operator<(Loss const & left, Loss const & right)
{
    if (left.position < right.position || right.position < left.position)
        return left.position < right.position;
    return std::tie(left.strComponent, left.strText) < std::tie(right.strComponent, right.strText);
}

bool FacetSet::IsEmpty() const
{
    return !minInclusive && !minExclusive && !maxInclusive && !maxExclusive && !length && !minLength && !maxLength &&
           !totalDigits && !fractionDigits && patterns.empty();
}

} // namespace QzXmlGen
