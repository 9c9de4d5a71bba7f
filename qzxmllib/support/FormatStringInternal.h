#pragma once

#include <locale.h>

namespace QzXmlLib16
{

/// The "C" locale, in which the library prints and reads numbers whatever the process has set. Lives as long as the
/// process.
locale_t CLocale();

/// Puts the calling thread into the "C" locale as long as it lives.
class CCLocaleScope
{
public:
    CCLocaleScope() : m_previous(uselocale(CLocale())) {}
    CCLocaleScope(CCLocaleScope const &) = delete;
    CCLocaleScope & operator=(CCLocaleScope const &) = delete;
    ~CCLocaleScope() { uselocale(m_previous); }

private:
    locale_t m_previous;
};

} // namespace QzXmlLib16
