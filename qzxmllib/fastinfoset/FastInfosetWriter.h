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

/// Writes Fast Infoset (ITU-T X.891). Call StartDocument, WriteHeader, the elements, WriteDocumentEnd and EndDocument.
/// Comments, processing instructions and in-line schemas do not reach the output. The stream receives octets in large
/// pieces; it holds all of them after WriteDocumentEnd.
class QZXMLLIB_API CFastInfosetWriter : public CXmlWriter
{
public:
    /// Context and stream must outlive the writer.
    CFastInfosetWriter(CFastInfosetContext const & context, CBinaryStream & stream);
    ~CFastInfosetWriter() override;

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

private:
    struct NameForm;
    struct StringForm;
    struct NameTable;
    /// A name written lately, with its key in the map. Saves putting the key together.
    struct LastName
    {
        std::u16string strKey;
        std::uint32_t dwIndex = 0;
    };

    void FlushStartElement(bool bHasAttributes);
    void WriteNamespaces(unsigned dwLead);
    void ClosePendingTags();
    void CloseAttributeList(CXmlWriterContext & context);
    CXmlWriterContext & RequireAttributes();
    void WriteName(NameForm const & form, unsigned dwLead, std::u16string_view prefix, std::u16string_view uri,
        std::u16string_view localName, CFIVocabulary::CIndexMap & map, std::vector<LastName> & lastNames);
    void WriteNamePart(NameTable const & table, std::u16string_view name);
    void WriteNamespaceAttribute(unsigned char byLead, std::u16string const & strAlias, std::u16string const & strUri);
    void WriteAttributeName(std::u16string_view prefix, std::u16string_view uri, std::u16string_view localName);
    void WriteAttributeValue(std::u16string_view value, ItemType eType);
    void WriteEncodedString(StringForm const & form, unsigned dwLead, std::u16string_view text, ItemType eType);
    void WriteUtf8(StringForm const & form, unsigned dwLead, std::u16string_view text);
    void WriteLiteralName(std::u16string_view name);
    void WritePacked(StringForm const & form, unsigned dwLead, unsigned dwKindBits, std::uint32_t dwIndex);
    void AppendRestrictedAlphabetString(std::uint32_t dwIndex, std::u16string_view text);

    NameTable PrefixTable();
    NameTable NamespaceTable();
    NameTable LocalNameTable();

    unsigned char * Room(std::size_t nOctets);
    void Put(unsigned dwOctet);
    void Put(unsigned char const * pOctets, std::size_t nOctets);
    template <class Forms>
    void PutNumber(Forms const & forms, unsigned dwLead, std::uint32_t dwValue);
    void FlushOctets();

    CBinaryStream * m_pStream;
    CFastInfosetContext const * m_pFIContext;
    /// An element whose lead octets wait until it is known whether attributes follow. Becomes the innermost record.
    CXmlWriterContext * m_pPendingContext = nullptr;
    /// The end of an element that may merge with the next end into one octet.
    bool m_bPendingTerminator = false;
    std::unique_ptr<CFIVocabulary> m_pVocabulary;

    std::vector<LastName> m_lastElementNames;
    std::vector<LastName> m_lastAttributeNames;
    /// The octets of one value.
    std::vector<unsigned char> m_value;
    std::unique_ptr<unsigned char[]> m_spOctets;
    std::size_t m_nUsed = 0;
    std::size_t m_nSize = 0;
};

} // namespace QzXmlLib16
