#pragma once

#include <locale.h>

namespace QzXmlLib16
{

/// The "C" locale, in which the library prints and reads numbers whatever the process has set. Lives as long as the
/// process.
locale_t CLocale();

} // namespace QzXmlLib16
