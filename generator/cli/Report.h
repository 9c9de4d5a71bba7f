#pragma once

#include "generator/model/Model.h"

#include <iosfwd>

namespace QzXmlGen
{

/// One line for each root element, class and member, then one for each construct that the classes neither enforce nor
/// keep, then a summary.
void PrintReport(std::ostream & out, Model const & model);

} // namespace QzXmlGen
