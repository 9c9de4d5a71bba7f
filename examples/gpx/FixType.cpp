#include "examples/gpx/FixType.h"

#include "qzxmllib/QzXmlLib16.h"

#include <iterator>
#include <string_view>

namespace Gpx
{

namespace
{

// In the order of FixType.
constexpr char16_t const * kFixTypes[] = {u"none", u"2d", u"3d", u"dgps", u"pps"};

} // namespace

char16_t const * FixTypeToString(int nValue)
{
    return nValue >= 0 && nValue < static_cast<int>(std::size(kFixTypes)) ? kFixTypes[nValue] : nullptr;
}

int FixTypeFromString(char16_t const * pszText)
{
    for (std::size_t n = 0; n < std::size(kFixTypes); ++n)
        if (std::u16string_view(kFixTypes[n]) == pszText)
            return static_cast<int>(n);
    throw QzXmlLib16::CQzInvalidValueException(
        QzXmlLib16::FormatString(u"The value [%s] is not a kind of fix", pszText));
}

} // namespace Gpx
