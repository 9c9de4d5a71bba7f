#include "generator/schema/XercesText.h"

#include <xercesc/util/TransService.hpp>

namespace QzXmlGen
{

std::string ToUtf8(XMLCh const * pszText)
{
    if (pszText == nullptr || *pszText == 0)
        return {};
    xercesc::TranscodeToStr const octets(pszText, "UTF-8");
    return std::string(reinterpret_cast<char const *>(octets.str()), static_cast<std::size_t>(octets.length()));
}

std::basic_string<XMLCh> FromUtf8(std::string const & strText)
{
    if (strText.empty())
        return {};
    xercesc::TranscodeFromStr const units(reinterpret_cast<XMLByte const *>(strText.data()), strText.size(), "UTF-8");
    return std::basic_string<XMLCh>(units.str(), static_cast<std::size_t>(units.length()));
}

} // namespace QzXmlGen
