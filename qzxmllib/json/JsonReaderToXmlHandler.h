#pragma once

#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/json/JsonReaderHandler.h"
#include "qzxmllib/support/Forward.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

/// Turns JSON into XML text: a name becomes an element, an array repeats its name, "@x" becomes an attribute and
/// "#text" the text beside attributes. Prefixes and declarations go into the XML as they stand.
class QZXMLLIB_API CJsonReaderToXmlHandler : public IJsonReaderHandler
{
public:
    /// Both objects stay the caller's and must outlive the handler.
    CJsonReaderToXmlHandler(
        CXmlTextWriter * pWriter, JsonRoundTrip eRoundTrip, IErrorPathProvider * pErrorPathProvider);
    ~CJsonReaderToXmlHandler() override;

    /// Refuses to start an element once the stream, into which the writer writes, holds more than nMaxUnits code units.
    void SetLimit(CTextStream const & stream, std::uint64_t nMaxUnits);

    void StartDocument() override;
    void EndDocument() override;
    void Name(std::u16string const & strName) override;
    void String(std::u16string const & strText) override;
    void Number(std::u16string const & strText) override;
    void StartObject() override;
    void EndObject() override;
    void StartArray() override;
    void EndArray() override;
    void Bool(bool bValue) override;
    void Null() override;

private:
    /// What the next value becomes.
    enum Target
    {
        Target_None,      ///< an item of the innermost array, if there is one
        Target_Element,   ///< the element m_pCurrentName, which is not started before its value has begun
        Target_Attribute, ///< the attribute m_pCurrentName
        Target_Text       ///< text of the element of the object
    };

    /// A name and what the value behind it becomes.
    struct KnownName
    {
        std::u16string strSource;
        std::u16string strName; ///< without the mark of an attribute
        Target eTarget = Target_None;
        bool bHarmless = false;
    };

    struct OpenObject
    {
        /// False once "#text" has ended the element, and for the outermost object, which has none.
        bool bElementOpen;
    };

    /// An open array, and those that were opened directly in it before its first item.
    struct OpenArray
    {
        std::u16string strName;
        std::size_t nNested;
    };

    void Learn(KnownName & known, std::u16string const & strName);
    void Value(std::u16string const & strText);
    void WriteItem(std::u16string const & strText);
    std::u16string const & ItemName();
    void StartItem();
    void CheckLimit() const;
    void StartElement(std::u16string const & strName);
    void EndElement();
    void EndText();
    void WriteText(std::u16string const & strText);
    void WriteAttribute(std::u16string const & strText);
    void RefuseContainer();
    [[noreturn]] static void FailText(std::u16string const & strText);
    [[noreturn]] void FailWithPath(std::u16string strMessage);

    CXmlTextWriter * m_pWriter;
    JsonRoundTrip m_eRoundTrip;
    IErrorPathProvider * m_pErrorPathProvider;
    CTextStream const * m_pStream = nullptr;
    std::uint64_t m_nMaxUnits = 0;

    Target m_eTarget = Target_None;
    KnownName const * m_pCurrentName = nullptr;
    /// Those met lately, by a hash.
    static constexpr unsigned kNameBits = 7;
    std::array<KnownName, 1u << kNameBits> m_names;
    /// The writer has no ideas of its own of what an element is made of.
    bool m_bWholeElements = false;
    /// Whether m_pCurrentName is on the stack of arrays.
    bool m_bInArray = false;
    std::vector<OpenObject> m_objects;
    /// Innermost last. Records behind m_nArrays are kept for their strings.
    std::vector<OpenArray> m_arrays;
    std::size_t m_nArrays = 0;
};

/// The XML text, in UTF-8, of a JSON text. Faults of the JSON throw CQzValidationException with a path; names and
/// values that have no place in XML throw CQzInvalidStateException.
QZXMLLIB_API CBinaryData ConvertJsonToXml(std::u16string_view text, CSerializationContext const & ctx);

} // namespace QzXmlLib16
