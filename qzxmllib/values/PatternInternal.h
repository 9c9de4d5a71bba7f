#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

/// A pattern in the syntax of XML Schema, ready to be matched by any number of threads.
class CPattern
{
public:
    /// From a store for the process if it is there, else compiled anew. Throws CQzException for a pattern that the
    /// engine refuses or that holds a lone surrogate.
    static std::shared_ptr<CPattern const> Get(std::u16string const & strPattern);

    explicit CPattern(std::u16string_view pattern);
    CPattern(CPattern const &) = delete;
    CPattern & operator=(CPattern const &) = delete;
    ~CPattern();

    /// True if the pattern takes the whole value. The effort is bounded by the length of the value; a pattern that
    /// needs more does not match. Throws CQzException for a value with a lone surrogate.
    bool Matches(std::u16string_view value) const;

private:
    void * m_pCode;
};

} // namespace QzXmlLib16
