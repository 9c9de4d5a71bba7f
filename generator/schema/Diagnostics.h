#pragma once

#include <string>
#include <vector>

namespace QzXmlGen
{

/// A place in a schema document. Line and column count from 1; 0 where they are not known.
struct Position
{
    std::string strFile;
    unsigned nLine = 0;
    unsigned nColumn = 0;
};

bool operator<(Position const & left, Position const & right);

enum class Severity
{
    Warning,
    Error
};

struct Diagnostic
{
    Severity eSeverity = Severity::Error;
    Position position;
    std::string strText;
};

/// The form that compilers use and editors understand: "file:line:column: error: text".
std::string ToString(Diagnostic const & diagnostic);

/// What was found while schemas were loaded and mapped, in the order of discovery, each finding once.
class CDiagnostics
{
public:
    void Add(Severity eSeverity, Position position, std::string strText);
    bool HasErrors() const;
    std::vector<Diagnostic> const & GetAll() const { return m_all; }

private:
    std::vector<Diagnostic> m_all;
};

} // namespace QzXmlGen
