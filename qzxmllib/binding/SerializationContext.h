#pragma once

#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/SmartPtr.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace QzXmlLib16
{

class CAttributeCol;
class CFastInfosetContext;
class CJsonContext;
template <class T>
class CSharedOptions;

/// Aliases (prefixes) of namespace URIs. A URI has at most one alias; one alias may stand for several URIs.
class QZXMLLIB_API CNamespaceAliasMap
{
public:
    CNamespaceAliasMap();
    CNamespaceAliasMap(CNamespaceAliasMap const & other);
    CNamespaceAliasMap & operator=(CNamespaceAliasMap const & other);
    virtual ~CNamespaceAliasMap();

    /// Stores the alias of the URI in place of one it already has.
    void Add(char16_t const * alias, char16_t const * namespaceURI);
    /// An absent URI changes nothing.
    void RemoveNamespace(char16_t const * namespaceURI);
    /// The first URI, in ascending order of code units, that has the alias. Throws CQzException if there is none.
    std::u16string GetNamespaceFromAlias(char16_t const * alias) const;
    /// The alias of the URI. An unknown URI gives an empty alias and is kept in the map with it.
    std::u16string GetAliasFromNamespace(char16_t const * namespaceURI) const;
    bool DoesNamespaceExist(char16_t const * namespaceURI) const;
    bool DoesAliasExist(char16_t const * alias) const;
    int GetNamespaceCount() const;
    /// The URI at a place counted from 0 in ascending order. Requires nIndex below GetNamespaceCount().
    std::u16string GetNamespaceAt(int nIndex) const;

private:
    friend class CXmlGeneratedClass;

    mutable std::map<std::u16string, std::u16string> m_mapAliases;
};

/// What a stranger's document may demand. A limit of 0 means that there is none.
struct QZXMLLIB_API CReadLimits
{
    /// Levels of nested elements in XML text and Fast Infoset. Deeper input throws CQzException. Beyond this, JSON is
    /// read to a depth of 100 always.
    std::uint32_t nMaxDepth = 10000;
    /// 16-bit units of text for each octet of input, counted once nMaxAmplifiedUnits are reached. Attributes count with
    /// the memory that they take besides.
    std::uint32_t nMaxAmplification = 100;
    /// 16-bit units of text that are allowed whatever the size of the input.
    std::uint64_t nMaxAmplifiedUnits = 67108864;
    /// Octets that compressed input may decompress to.
    std::uint64_t nMaxInflatedOctets = 0xFFFFFFFF;
    /// Levels of general entities that refer to each other. The parser recurses along them.
    std::uint32_t nMaxEntityDepth = 64;
    /// False refuses every document type declaration.
    bool bAllowDocumentType = true;

    /// Limits for input of strangers: no document type, a depth of 256, an amplification of 10 and 64 MiB of inflated
    /// octets.
    static CReadLimits Strict() noexcept;
};

/// The options of every read and write. Threads may share a context that nobody changes. FromJson... changes a context
/// for the length of the call unless the round trip option of its JSON options is 2, so such a one is not shared then.
class QZXMLLIB_API CSerializationContext
{
public:
    CSerializationContext();
    /// Copies every option. Fast Infoset and JSON options and additional root attributes that exist are shared with the
    /// copy.
    CSerializationContext(CSerializationContext const & other);
    CSerializationContext & operator=(CSerializationContext const & other);
    virtual ~CSerializationContext();

    /// The process-wide context of calls that name none. Settle its contents before concurrent work starts.
    static CSerializationContext & GetDefaultContext();

    /// Writing: xsi:type where the tag of an object with base classes differs from the name of its class. True at
    /// first.
    bool GetWriteTypeAttribute() const { return m_bWriteTypeAttribute; }
    void SetWriteTypeAttribute(bool bValue) { m_bWriteTypeAttribute = bValue; }
    /// Occurrence limits of collections are not enforced.
    bool GetIgnoreInvalidCollectionCounts() const { return m_bIgnoreInvalidCollectionCounts; }
    void SetIgnoreInvalidCollectionCounts(bool bValue) { m_bIgnoreInvalidCollectionCounts = bValue; }
    /// A choice with nothing set or found is no failure. It is none anyway unless all entries of the choice are
    /// collections with a lower limit, as an entry for one value may stay empty.
    bool GetIgnoreMissingChoice() const { return m_bIgnoreMissingChoice; }
    void SetIgnoreMissingChoice(bool bValue) { m_bIgnoreMissingChoice = bValue; }
    /// Reading: a missing mandatory element is no failure. Setting true throws CQzInvalidStateException while unknown
    /// elements are ignored.
    bool GetIgnoreMissingMandatoryElements() const { return m_bIgnoreMissingMandatoryElements; }
    void SetIgnoreMissingMandatoryElements(bool bValue);
    /// Reading: elements that no metadata entry accepts are skipped. Known elements behind an unknown one may be
    /// skipped with it: in a sequence optional ones and collections up to the next mandatory element, except those of
    /// the last entry of the table, in an all group everything. Setting true throws CQzInvalidStateException while
    /// missing mandatory elements are ignored.
    bool GetIgnoreUnknownElements() const { return m_bIgnoreUnknownElements; }
    void SetIgnoreUnknownElements(bool bValue);
    /// Reading: attributes that no metadata entry accepts are skipped.
    bool GetIgnoreUnknownAttributes() const { return m_bIgnoreUnknownAttributes; }
    void SetIgnoreUnknownAttributes(bool bValue) { m_bIgnoreUnknownAttributes = bValue; }
    /// Local names alone decide. Always true under SchemaType_NoNamespaces.
    bool GetIgnoreNamespaces() const
    {
        return m_bIgnoreNamespaces.load(std::memory_order_relaxed) || m_eSchemaType == SchemaType_NoNamespaces;
    }
    void SetIgnoreNamespaces(bool bValue) { m_bIgnoreNamespaces = bValue; }
    /// Writing: an optional attribute whose text equals its default is left out.
    bool GetNoOptionalAttributeDefaultOutput() const { return m_bNoOptionalAttributeDefaultOutput; }
    void SetNoOptionalAttributeDefaultOutput(bool bValue) { m_bNoOptionalAttributeDefaultOutput = bValue; }
    /// Writing: an element whose text equals its default keeps the text; when false it is written empty.
    bool GetWriteDefaultElementValues() const { return m_bWriteDefaultElementValues; }
    void SetWriteDefaultElementValues(bool bValue) { m_bWriteDefaultElementValues = bValue; }
    /// Writing: every value that XML Schema allows comes back equal. Floating point numbers have the fewest digits that
    /// tell them, years have four digits, a duration of nothing is PT0S, tabs and line ends in attributes and carriage
    /// returns in text are character references, JSON is written as with its option for strict output, and Fast
    /// Infoset holds as text what a shorter form cannot hold. Formats of the class hold all the same. Reading:
    /// carriage returns that come from references are kept, and tabs and line ends in JSON. What remains is listed in
    /// docs/losses.md. False at first.
    bool GetExactValues() const { return m_bExactValues; }
    void SetExactValues(bool bValue) { m_bExactValues = bValue; }
    /// Reading: the markers of CDATA sections are dropped. True at first; when false they stay in the text.
    bool GetStripCDATA() const { return m_bStripCDATA; }
    void SetStripCDATA(bool bValue) { m_bStripCDATA = bValue; }

    SchemaType GetSchemaType() const { return m_eSchemaType; }
    /// Reaches only documents built afterwards.
    void SetSchemaType(SchemaType eValue) { m_eSchemaType = eValue; }

    /// Default namespace that the root of a document declares, empty for none; a CElement as root declares none.
    /// Elements without a namespace are written as they stand and so take this one when they are read.
    std::u16string GetDefaultNamespaceURI() const { return m_strDefaultNamespaceURI; }
    void SetDefaultNamespaceURI(char16_t const * uri);
    /// Text that is placed inside the root's start tag behind its attributes.
    std::u16string GetInLineSchema() const { return m_strInLineSchema; }
    void SetInLineSchema(char16_t const * text);
    /// One level of indentation, one tab at first. Only tabs and blanks are allowed; anything else throws
    /// CQzInvalidParamException and leaves the old text. Null means none.
    std::u16string GetIndentChars() const { return m_strIndentChars; }
    void SetIndentChars(char16_t const * text);

    /// Declared on the root of every document that is written.
    CNamespaceAliasMap & GetNamespaceAliases() { return m_namespaceAliases; }
    CNamespaceAliasMap const & GetNamespaceAliases() const { return m_namespaceAliases; }
    /// Written on the root of every document, in front of its own attributes. Created by the first call, empty and open
    /// to every namespace. Shared with copies made after that call.
    CSmartPtr<CAttributeCol> GetAdditionalRootAttributes() const;
    /// Complete texts, with their markers, written in front of the root.
    std::vector<std::u16string> & GetProcessingInstructions() { return m_processingInstructions; }
    std::vector<std::u16string> const & GetProcessingInstructions() const { return m_processingInstructions; }

    /// Options of the binary form, created by the first call. Shared with copies made after that call.
    CFastInfosetContext & GetFIContext() const;
    /// Options of the JSON form, created by the first call. Shared with copies made after that call.
    CJsonContext & GetJsonContext() const;

    CReadLimits const & GetReadLimits() const { return m_readLimits; }
    void SetReadLimits(CReadLimits const & limits) { m_readLimits = limits; }

private:
    friend class CXmlGeneratedClass;
    friend class CXmlObjectBase;

    /// The additional root attributes, or null if nobody has asked for them yet.
    CAttributeCol * FindAdditionalRootAttributes() const
    {
        return m_spAdditionalRootAttributes.load(std::memory_order_acquire);
    }

    mutable std::atomic<CSharedOptions<CFastInfosetContext> *> m_pFIContext{nullptr};
    mutable std::atomic<CSharedOptions<CJsonContext> *> m_pJsonContext{nullptr};
    std::u16string m_strDefaultNamespaceURI;
    bool m_bWriteTypeAttribute = true;
    CNamespaceAliasMap m_namespaceAliases;
    /// Holds one count.
    mutable std::atomic<CAttributeCol *> m_spAdditionalRootAttributes{nullptr};
    std::vector<std::u16string> m_processingInstructions;
    std::u16string m_strInLineSchema;
    bool m_bIgnoreInvalidCollectionCounts = false;
    bool m_bIgnoreMissingChoice = false;
    bool m_bIgnoreMissingMandatoryElements = false;
    bool m_bIgnoreUnknownElements = false;
    bool m_bIgnoreUnknownAttributes = false;
    mutable std::atomic<bool> m_bIgnoreNamespaces{false};
    SchemaType m_eSchemaType = SchemaType_Default;
    bool m_bNoOptionalAttributeDefaultOutput = false;
    bool m_bWriteDefaultElementValues = false;
    bool m_bExactValues = false;
    bool m_bStripCDATA = true;
    std::u16string m_strIndentChars = u"\t";
    CReadLimits m_readLimits;

    static CSerializationContext m_defaultContext;
};

} // namespace QzXmlLib16
