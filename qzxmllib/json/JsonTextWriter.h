#pragma once

#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Forward.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

class COctetChain;
struct TwinText;

/// Writes JSON into a stream while the object is walked. An element becomes a property whose value is an object if it
/// has attributes or children and else its text; an element with nothing is null. A collection becomes an array. Line
/// feeds in values become the line end, carriage returns vanish, and every text stops at its first code unit 0.
/// A namespace must be known before it is used below the root; what is not throws CQzException.
class QZXMLLIB_API CJsonTextWriter : public CXmlWriter
{
public:
    /// The stream must outlive the writer.
    explicit CJsonTextWriter(CTextStream & stream);
    ~CJsonTextWriter() override;

    /// Opens the stream.
    void StartDocument() override;
    /// Closes the stream and then checks that no element is open.
    void EndDocument() override;
    /// A comment on a line of its own, whatever the format.
    void WriteComment(std::u16string const & strText) override;
    /// Writes nothing.
    void WriteProcessingInstruction(std::u16string const & strText) override;
    /// Writes nothing.
    void WriteInLineSchema(std::u16string const & strText) override;
    void WriteStartElement(std::u16string const & strName, std::u16string const & strUri) override;
    void WriteText(std::u16string const & strText, ItemType eType) override;
    void WriteEndElement() override;
    void WriteAttribute(std::u16string const & strName, std::u16string const & strUri, std::u16string const & strValue,
        ItemType eType) override;
    /// Writes an attribute with JsonRoundTrip_Full, otherwise nothing.
    void WriteXsiType(std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType) override;
    /// Writes nothing: nil has no form in JSON.
    void WriteXsiNil() override;
    void WriteTextView(std::u16string_view text, ItemType eType) override;
    void WriteAttributeView(std::u16string const & strName, std::u16string const & strUri, std::u16string_view value,
        ItemType eType) override;
    void WriteElementView(std::u16string const & strName, std::u16string const & strUri, std::u16string_view text,
        ItemType eType) override;

    /// The brackets around the root's property.
    void WriteDocumentStart();
    void WriteDocumentEnd();

    /// Indentation and line ends; on at first. May only be set with no element open.
    bool GetFormat() const noexcept { return m_bFormat; }
    void SetFormat(bool bFormat);
    EOLType GetEOL() const noexcept { return m_eEOLType; }
    /// Throws CQzException for anything but the two line ends, and changes nothing then.
    void SetEOL(EOLType eEOLType);
    /// One level of indentation, a tab at first.
    std::u16string const & GetIndentChars() const noexcept { return m_strIndentChars; }
    void SetIndentChars(char16_t const * pszIndentChars);
    /// JsonRoundTrip_Full at first.
    JsonRoundTrip GetRoundTrip() const noexcept { return m_eRoundTrip; }
    void SetRoundTrip(JsonRoundTrip eRoundTrip)
    {
        m_eRoundTrip = eRoundTrip;
        m_bNamesFit = false;
    }
    /// See CJsonContext::SetStrict. Then nothing of a value is lost: a carriage return is escaped as well.
    bool GetStrict() const noexcept { return m_bStrict; }
    void SetStrict(bool bStrict)
    {
        m_bStrict = bStrict;
        m_bNamesFit = false;
    }

private:
    /// The name that the items of an open array share.
    struct ItemName
    {
        std::u16string strName;
        std::u16string strUri;
    };

    struct NameCaches;

    void Put(std::u16string_view text);
    void Put(char16_t c);
    COctetChain * GetOctets() const;
    std::size_t Break(std::int32_t nDepth);
    void GrowBreak(std::size_t nUnits);
    void ForgetBreak();
    void PutBreak(std::int32_t nDepth);
    void PutRaw(std::u16string_view text);
    bool IsOwnClass() const noexcept;
    void PutContent(std::u16string_view text, ItemType eType);
    void PutAttributeOf(
        std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType);
    void PutName(std::u16string_view mark, std::u16string const * pAlias, std::u16string const & strName);
    void PutDeclaration(CXmlWriterContext & context, std::u16string const * pAlias, std::u16string const & strUri);
    void PutRootDeclarations(CXmlWriterContext & context);
    void WriteElementName(CXmlWriterContext & context);
    void WriteSeparator(CXmlWriterContext & context);
    void WriteValue(std::u16string_view text, ItemType eType);
    void WriteEscaped(std::u16string_view text, bool bAll);
    std::u16string const & RequireAlias(
        CXmlWriterContext const & context, std::u16string const & strUri, std::u16string const & strName) const;
    void OpenArrayOf(CXmlWriterContext & item);
    void CloseArray(CXmlWriterContext & holder);
    void FinishArray(CXmlWriterContext & holder, bool bElementFollows);
    bool IsNextItem(std::u16string const & strName, std::u16string const & strUri) const;
    void FlushIfFull();
    void FitNames();
    template <bool bAttribute>
    TwinText const * FindHead(
        CXmlWriterContext const & context, std::u16string const & strName, std::u16string const & strUri);
    TwinText const * MakeHead(CXmlWriterContext const & context, bool bAttribute, std::u16string const & strName,
        std::u16string const & strUri);
    bool OpensArray(CXmlWriterContext const & holder) const;
    template <class F>
    bool PutInOnePiece(bool bAscii, F const & put);
    template <bool bAttribute>
    bool WriteShortProperty(CXmlWriterContext & holder, std::u16string const & strName, std::u16string const & strUri,
        std::u16string_view value, ItemType eType);
    bool WriteShortStart(
        CXmlWriterContext & holder, bool bNamed, std::u16string const & strName, std::u16string const & strUri);

    std::u16string m_strIndentChars;
    std::u16string m_strEOL;
    EOLType m_eEOLType = EOLType_LF;
    JsonRoundTrip m_eRoundTrip = JsonRoundTrip_Full;
    bool m_bFormat = true;
    bool m_bStrict = false;
    CTextStream * m_pStream;
    /// The name of the innermost element is written, and its value is not an object so far.
    bool m_bObjectPending = false;
    /// No class derived from this one may have other ideas of what an element is made of.
    bool m_bWholeElements = false;
    std::unique_ptr<NameCaches> m_spNames;
    /// Whether the names kept there were prepared for the options of this writer.
    bool m_bNamesFit = false;
    /// Whether the stream keeps octets and nobody else has ideas of what it does with code units.
    bool m_bOctets = false;
    /// The line end and as much indentation as was needed so far.
    std::unique_ptr<TwinText> m_spBreak;
    /// One for each open array, innermost last. Records behind m_nArrays are kept for their strings.
    std::vector<ItemName> m_arrays;
    std::size_t m_nArrays = 0;
};

} // namespace QzXmlLib16
