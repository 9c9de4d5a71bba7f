#pragma once

#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

struct FIForms;
struct FINameForm;
struct FIStringForm;

/// Writes Fast Infoset (ITU-T X.891). Call StartDocument, WriteHeader, the elements, WriteDocumentEnd and EndDocument.
/// Comments, processing instructions and in-line schemas do not reach the output. The stream receives octets in large
/// pieces; it holds all of them after WriteDocumentEnd.
class QZXMLLIB_API CFastInfosetWriter : public CXmlWriter
{
public:
    /// Context and stream must outlive the writer.
    CFastInfosetWriter(CFastInfosetContext const & context, CBinaryStream & stream);
    ~CFastInfosetWriter() override;

    /// Values come back in their own spelling: what a short form cannot hold, or gives back in another one, is written
    /// as text. Off at first.
    void SetExactValues(bool bExact) noexcept { m_bExactValues = bExact; }

    /// The start of the document, behind an XML declaration if one is named. Throws CQzException for any other number.
    void WriteHeader(FInfoDecl eDecl);
    void WriteDocumentEnd();

    void EndDocument() override;
    void WriteComment(std::u16string const & strText) override;
    void WriteProcessingInstruction(std::u16string const & strText) override;
    void WriteInLineSchema(std::u16string const & strText) override;
    void WriteStartElement(std::u16string const & strName, std::u16string const & strUri) override;
    void WriteText(std::u16string const & strText, ItemType eType) override;
    void WriteEndElement() override;
    void WriteAttribute(std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue,
        ItemType eType) override;
    void WriteXsiType(std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType) override;
    void WriteXsiNil() override;
    void WriteTextView(std::u16string_view text, ItemType eType) override;
    void WriteAttributeView(std::u16string const & strName, std::u16string const & strUri, std::u16string_view value,
        ItemType eType) override;
    void WriteElementView(std::u16string const & strName, std::u16string const & strUri, std::u16string_view text,
        ItemType eType) override;

private:
    bool IsOwnClass() const noexcept;
    void PutContent(std::u16string_view text, ItemType eType);
    void PutAttributeOf(
        std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType);
    /// What is known of a name.
    struct KnownName;
    struct Tables;
    class CNames;
    class CDeclared;
    using CIndexMap = CFIVocabulary::CIndexMap;

    void FlushStartElement(bool bHasAttributes);
    void WriteRootNamespaces(unsigned dwLead);
    void FlushDeclaring();
    CXmlWriterContext & RequireDeclaring();
    void AddDeclaring(std::u16string_view prefix, std::u16string const & strUri, std::u16string_view name,
        std::u16string_view value, ItemType eType);
    std::u16string const & DeclarePrefix(CXmlWriterContext & context, std::u16string const & strUri);
    void ClosePendingTerminator();
    void CloseAttributeList(CXmlWriterContext & context);
    CXmlWriterContext & RequireAttributes();
    bool IsKnown(KnownName const & name) const noexcept;
    void WriteKnownName(FINameForm const & form, unsigned dwLead, KnownName & name);
    void WriteFirst(FINameForm const & form, unsigned dwLead, KnownName & name);
    KnownName WriteName(FINameForm const & form, unsigned dwLead, std::u16string_view prefix, std::u16string_view uri,
        std::u16string_view localName);
    bool WriteShortElement(
        std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType);
    template <bool bChunk>
    unsigned char * PutPlainValue(unsigned char * p, std::u16string_view text, ItemType eType);
    template <bool bChunk>
    bool WritePlainValue(std::u16string_view text, ItemType eType);
    void WriteNamePart(CNames & names, std::u16string_view name);
    void WriteNamePart(CNames & names, std::u16string_view name, std::uint32_t nId);
    void WriteLiteralName(std::u16string_view name);
    void WriteAttributeValue(std::u16string_view value, ItemType eType);
    bool WriteEncodedString(
        FIStringForm const & form, unsigned dwLead, unsigned dwAdd, std::u16string_view text, ItemType eType);
    bool Encode(CFastInfosetContext::EncodedCharacterString const & encoding, std::u16string_view text);
    void WriteUtf8(FIForms const & lengths, unsigned dwLead, std::u16string_view text);
    bool PackByAlphabet(std::uint32_t dwIndex, std::u16string_view text);

    unsigned char * Room(std::size_t nOctets);
    void Put(unsigned dwOctet);
    void Put(unsigned char const * pOctets, std::size_t nOctets);
    void PutNumber(FIForms const & forms, unsigned dwLead, std::uint32_t dwNumber);
    void PutLength(FIForms const & forms, unsigned dwLead, std::size_t nOctets);
    void FlushOctets();

    CBinaryStream * m_pStream;
    CFastInfosetContext const * m_pFIContext;
    /// An element whose lead octets wait until it is known whether attributes follow. Becomes the innermost record.
    CXmlWriterContext * m_pPendingContext = nullptr;
    /// What was known of its name under the declarations of that version, or null.
    KnownName * m_pPendingName = nullptr;
    std::uint64_t m_nPendingVersion = 0;
    /// The end of an element that may merge with the next end into one octet.
    bool m_bPendingTerminator = false;
    /// No class derived from this one may have other ideas of what an element is made of.
    bool m_bWholeElements = false;
    bool m_bExactValues = false;
    /// What is declared where. Null unless the document is strict.
    std::unique_ptr<CDeclared> m_spDeclared;
    std::unique_ptr<Tables> m_spTables;
    /// What the tables begin with.
    CFIVocabulary const * m_pVocabulary;

    std::u16string m_strKey; ///< of a name
    /// The octets of one value.
    std::vector<unsigned char> m_value;
    /// Octets on their way to the stream.
    unsigned char * m_pOctets;
    std::size_t m_nUsed = 0;
};

} // namespace QzXmlLib16
