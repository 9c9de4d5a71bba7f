#include "generator/schema/Diagnostics.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace QzXmlGen
{

bool operator<(Position const & left, Position const & right)
{
    return std::tie(left.strFile, left.nLine, left.nColumn) < std::tie(right.strFile, right.nLine, right.nColumn);
}

std::string ToString(Diagnostic const & diagnostic)
{
    Position const & position = diagnostic.position;
    std::string strResult = position.strFile.empty() ? "qzxmlgen" : position.strFile;
    if (position.nLine != 0)
    {
        strResult += ':' + std::to_string(position.nLine);
        if (position.nColumn != 0)
            strResult += ':' + std::to_string(position.nColumn);
    }
    strResult += diagnostic.eSeverity == Severity::Error ? ": error: " : ": warning: ";
    return strResult + diagnostic.strText;
}

void CDiagnostics::Add(Severity eSeverity, Position position, std::string strText)
{
    Diagnostic diagnostic{eSeverity, std::move(position), std::move(strText)};
    auto const same = [text = ToString(diagnostic)](Diagnostic const & other) { return ToString(other) == text; };
    if (std::none_of(m_all.begin(), m_all.end(), same))
        m_all.push_back(std::move(diagnostic));
}

bool CDiagnostics::HasErrors() const
{
    return std::any_of(
        m_all.begin(), m_all.end(), [](Diagnostic const & each) { return each.eSeverity == Severity::Error; });
}

} // namespace QzXmlGen
