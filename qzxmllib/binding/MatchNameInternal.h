#pragma once

#include "qzxmllib/binding/EntryId.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/EqualTextInternal.h"

#include <string>

namespace QzXmlLib16Data
{

/// Compares the name itself. What matches remembers the entry.
[[gnu::noinline]] inline bool MatchNewName(QzXmlLib16::CXmlName const & name, CEntryId const & id,
    std::u16string const & strLocalName, std::u16string const & strNamespace)
{
    if (!QzXmlLib16::EqualText(name.strLocalName, strLocalName) ||
        !QzXmlLib16::EqualText(name.strNamespaceURI, strNamespace))
        return false;
    name.nEntry = id.Get();
    return true;
}

/// Whether a node of this name belongs to the entry. The name remembers the entry, so that it is not compared again
/// for the next node; a document belongs to one thread.
inline bool MatchName(QzXmlLib16::CXmlName const & name, CEntryId const & id, std::u16string const & strLocalName,
    std::u16string const & strNamespace)
{
    return name.nEntry == id.Get() || MatchNewName(name, id, strLocalName, strNamespace);
}

} // namespace QzXmlLib16Data
