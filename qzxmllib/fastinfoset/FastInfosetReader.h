#pragma once

#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/fastinfoset/FIVocabulary.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

struct FIForm;
struct FIForms;
struct FINameForm;
struct FIStringForm;

/// Builds the tree of a document from Fast Infoset (ITU-T X.891). Comments, processing instructions, entity references
/// and what stands in front of the root are walked over. A document that brings alphabets or algorithms of its own
/// cannot be read.
///
/// An octet of input may name a long entry of a table, so the tree can be much larger than the input; the read limits
/// of the context of the document bound that, and the nesting depth.
class QZXMLLIB_API CFastInfosetReader : public CInstanceMonitor
{
public:
    CFastInfosetReader(CFastInfosetContext const & context, CXmlDocument & doc);
    CFastInfosetReader(CFastInfosetReader const &) = delete;
    CFastInfosetReader & operator=(CFastInfosetReader const &) = delete;
    ~CFastInfosetReader() override;

    /// False if the octets do not begin with the identification of Fast Infoset, bare or behind one of the XML
    /// declarations of X.891; the document has received nothing then. Malformed Fast Infoset throws CQzException.
    bool ReadDocument(unsigned char const * pOctets, std::size_t nOctets);

private:
    /// A string in the input: characters of one encoding, or the index of one that was there before.
    struct CString
    {
        bool bIndex = false;
        bool bAddToTable = false;
        unsigned eKind = 0;
        /// Of the string, or of its alphabet or algorithm.
        std::uint32_t dwIndex = 0;
        unsigned char const * pOctets = nullptr;
        std::size_t nOctets = 0;
    };
    /// An entry of a table.
    struct CText
    {
        CText(std::u16string_view text) noexcept
            : pUnits(text.data()), nUnits(text.size() & (SIZE_MAX >> 1)), bShared(false)
        {
        }
        operator std::u16string_view() const noexcept { return std::u16string_view(pUnits, nUnits); }

        char16_t const * pUnits;
        std::size_t nUnits : 8 * sizeof(std::size_t) - 1;
        /// The units lie in the tree, and neither 0 nor a carriage return is among them.
        std::size_t bShared : 1;
    };
    using CStringTable = std::vector<CText>;
    /// The names that a table of qualified names stands for, null until one is needed.
    using CNameCache = std::vector<CXmlName const *>;

    std::size_t Remaining() const { return static_cast<std::size_t>(m_pEnd - m_pCurrent); }
    unsigned char ReadOctet();
    unsigned char const * ReadOctets(std::size_t nOctets);
    bool StepOver(void const * pOctets, std::size_t nOctets);
    bool StepOverIdentification();
    std::uint32_t ReadForm(FIForm const & form, unsigned char byLead);
    std::uint32_t ReadNumber(FIForms const & forms, unsigned char byLead, char16_t const * pszFailure);
    std::uint32_t ReadIndexOnBit2(unsigned char byLead);
    std::uint32_t ReadIndexFrom0(unsigned char byLead);
    std::uint32_t ReadSequenceLength();
    std::size_t ReadLengthOnBit2(unsigned char byLead);

    CString ReadIdentifyingString();
    CString ReadValue();
    CString ReadChunk(unsigned char byLead);
    CString ReadEncodedString(FIStringForm const & form, unsigned char byLead);
    char16_t const * TakePlain(CString const & string);
    void AddToTable(CStringTable & table, CString const & string);
    std::u16string Decode(CString const & string);
    std::u16string DecodeKind(CString const & string) const;
    std::u16string DecodeAlphabet(CString const & string) const;

    void SkipOctetString();
    void SkipOctetStrings(std::uint32_t nCount);
    void SkipIdentifyingStrings(unsigned nCount);
    void SkipString(CString const & string) const;
    void SkipInstruction();
    void SkipComment();
    void SkipDeclared(unsigned dwPattern, unsigned nFlags, unsigned nStrings);
    void SkipHeader();
    void SkipInitialVocabulary();
    void SkipDocumentType(unsigned char byLead);
    void SkipNameSurrogates();

    void ReadChildren();
    void ReadElements(unsigned char byLead);
    bool ReadElementStart(unsigned char byLead);
    bool ReadAttributes(CXmlElement * pElement);
    void EndElement();
    void ReadNamespaceAttributes();
    void ReadAttribute(CXmlElement * pElement, unsigned char byLead);
    unsigned char const * TakeShortText(
        unsigned char const * p, std::size_t nOctets, bool bAdd, CStringTable & table, CText & text);
    bool FindShared(CStringTable const & table, std::size_t nEntry, CText & text);
    unsigned char const * ReadShortChunk(unsigned char const * p, unsigned char byLead, CText & text);
    unsigned char const * ReadShortValue(unsigned char const * p, CText & text);
    bool ReadShortAttribute(CXmlElement & element);
    bool ReadLeaf();
    void ReadText(CXmlElement * pElement, unsigned char byLead);
    CXmlName const & ReadName(FINameForm const & form, unsigned char byLead);
    CXmlName const & ReadLiteralName(unsigned char byLead, CNameCache & names);
    CXmlName const & FindName(CFIVocabulary::CQNameParts const & parts);
    std::uint32_t ReadNamePart(CStringTable & table, char16_t const * pszTable);
    void CountNamed(std::size_t nUnits);

    CFastInfosetContext const * m_pFIContext;
    CXmlDocument & m_doc;
    unsigned char const * m_pFirst = nullptr;
    unsigned char const * m_pCurrent = nullptr;
    unsigned char const * m_pEnd = nullptr;
    CXmlTree * m_pTree = nullptr;
    /// The innermost open element, and how many are open.
    CXmlElement * m_pElement = nullptr;
    std::size_t m_nDepth = 0;
    /// What the tables begin with.
    CFIVocabulary const * m_pVocabulary = nullptr;
    CStringTable m_prefixes;
    CStringTable m_namespaceNames;
    CStringTable m_localNames;
    CStringTable m_attributeValues;
    CStringTable m_characterChunks;
    CNameCache m_elementNames;
    CNameCache m_attributeNames;
    /// Entries that are too long for the tree.
    std::deque<std::u16string> m_longTexts;
    /// A name in the form of the parser. Its namespace stays for the next one that has the same.
    std::string m_strRawName;
    std::string m_strRawLocalName;
    std::size_t m_nRawNamespace = 0;
    std::uint32_t m_dwRawNamespace = 0;
    bool m_bRawNamespace = false;
    std::u16string m_strText; ///< of a chunk that has no place yet
    /// UTF-16 code units of the strings that indexes have named, and the number that is allowed.
    std::uint64_t m_nNamedUnits = 0;
    std::uint64_t m_nMaxNamedUnits = 0;
    std::size_t m_nMaxDepth = 0;
};

} // namespace QzXmlLib16
