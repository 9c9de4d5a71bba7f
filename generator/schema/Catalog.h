#pragma once

#include "generator/schema/Diagnostics.h"

#include <optional>
#include <string>
#include <vector>

namespace QzXmlGen
{

/// The entries of OASIS XML Catalogs that say where a URI is kept as a file: system, uri, their rewriting and suffix
/// forms, public as a URI, groups, xml:base and nextCatalog.
class CCatalog
{
public:
    /// Adds the entries of a file. What is not well-formed is added to the diagnostics.
    void Load(std::string const & strPath, CDiagnostics & diagnostics);
    /// The file for a namespace name or a location; nothing if no entry matches. An exact entry comes before a
    /// prefix or suffix, the longest of which is taken.
    std::optional<std::string> Find(std::string const & strUri) const;

    enum class Match
    {
        Exact,
        Prefix,
        Suffix
    };
    struct Entry
    {
        Match eMatch = Match::Exact;
        std::string strUri;
        std::string strTarget;
    };

private:
    std::vector<Entry> m_entries;
    std::vector<std::string> m_loaded;
};

} // namespace QzXmlGen
