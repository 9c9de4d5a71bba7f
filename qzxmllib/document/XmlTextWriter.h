#pragma once

#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Forward.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

class COctetChain;
struct TwinText;

/// Writes XML text into a stream. Carriage returns in values vanish, line feeds in text become the line end, text
/// that begins with "<![CDATA[" is written as it stands, and every text stops at its first code unit 0.
class QZXMLLIB_API CXmlTextWriter : public CXmlWriter
{
public:
    /// The stream must outlive the writer.
    explicit CXmlTextWriter(CTextStream * pStream);
    ~CXmlTextWriter() override;

    /// Opens the stream.
    void StartDocument() override;
    /// Closes the stream and then checks that no element is open.
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

    /// Indentation and line ends; on at first. May only be set with no element open.
    bool GetFormat() const noexcept { return m_bFormat; }
    void SetFormat(bool bFormat);
    EOLType GetEOL() const noexcept { return m_eEOLType; }
    /// Throws CQzException for anything but the two line ends, and changes nothing then.
    void SetEOL(EOLType eEOLType);
    /// One level of indentation, a tab at first.
    std::u16string const & GetIndentChars() const noexcept { return m_strIndentChars; }
    void SetIndentChars(std::u16string const & strIndentChars);
    /// Null counts as empty.
    void SetIndentChars(char16_t const * pszIndentChars)
    {
        SetIndentChars(pszIndentChars != nullptr ? std::u16string(pszIndentChars) : std::u16string());
    }

    /// Tabs and carriage returns in attributes, and carriage returns in text, are written as character references, with
    /// which they pass a parser. Off at first: a tab is written as it stands and a carriage return is left out.
    bool GetExactText() const noexcept { return m_bExactText; }
    void SetExactText(bool bExactText) noexcept { m_bExactText = bExactText; }

    /// Writes the XML declaration. Only with no element open.
    void WriteHeader();
    /// Writes the text as it stands and a line end. Throws CQzException with an element open.
    void WriteHeadedDirective(std::u16string const & strText);
    /// Ends the start tag of the open element if it is still open, and counts one more child.
    void CloseStartTag();
    /// Writes the text as it stands, and a line end if the output is formatted.
    void WriteRaw(std::u16string const & strText);

private:
    /// The tags of an element without attributes.
    struct TagText;
    struct NameCaches;

    void Put(char16_t const * pText, std::size_t nUnits);
    template <std::size_t nSize>
    void Put(char16_t const (&szText)[nSize])
    {
        Put(szText, nSize - 1);
    }
    void Put(std::u16string_view text);
    void PutEOL();
    void PutTagEnd();
    template <class Write>
    void PutPieces(std::size_t nMax, Write && write);
    COctetChain * GetOctets() const;
    template <class To>
    void PutIndent(To & to, std::int32_t nDepth);
    std::size_t IndentUnits(CXmlWriterContext const & context) const;
    bool IsOwnClass() const noexcept;
    void PutContent(std::u16string_view text);
    void PutAttributeOf(std::u16string const & strName, std::u16string const & strUri, std::u16string_view value);
    void PutUri(std::u16string_view uri);
    void PutDeclaration(std::u16string const & strAlias, std::u16string const & strUri);
    void WriteEscaped(std::u16string_view text, bool bAttribute);
    bool PutExact(std::u16string_view text, bool bAttribute);
    void FlushIfFull();
    TagText const * FindTags(
        CXmlWriterContext const & context, std::u16string const & strName, std::u16string const & strUri);
    TagText const * MakeTags(
        CXmlWriterContext const & context, std::u16string const & strName, std::u16string const & strUri);
    template <class Out>
    bool PutAttribute(Out out, TwinText const & head, std::u16string_view value);
    template <class Out>
    bool PutElement(Out out, TagText const & tags, std::size_t nIndent, bool bEndsTag, std::u16string_view text);
    bool WriteShortAttribute(CXmlWriterContext const & context, std::u16string const & strName,
        std::u16string const & strUri, std::u16string_view value);
    bool WriteShortElement(std::u16string const & strName, std::u16string const & strUri, std::u16string_view text);

    std::u16string m_strIndentChars;
    /// Several levels of indentation in one piece, and some code units more that may be copied with it.
    std::unique_ptr<TwinText> m_spIndentRun;
    std::size_t m_nIndentUnits = 0; ///< code units of one level
    std::u16string m_strEOL;
    EOLType m_eEOLType;
    bool m_bFormat;
    bool m_bExactText = false;
    /// No class derived from this one may have other ideas of what an element is made of.
    bool m_bWholeElements = false;
    CTextStream * m_pStream;
    /// Whether the stream keeps octets and nobody else has ideas of what it does with code units.
    bool m_bOctets = false;
    std::unique_ptr<NameCaches> m_spNames;
    /// Whether the tags kept there end as those of this writer do.
    bool m_bTagsFit = false;
};

} // namespace QzXmlLib16
