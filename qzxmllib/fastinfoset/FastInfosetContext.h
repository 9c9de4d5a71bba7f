#pragma once

#include "qzxmllib/fastinfoset/FIVocabulary.h"
#include "qzxmllib/support/Export.h"

#include <cstdint>
#include <string>

namespace QzXmlLib16
{

/// Options of the binary form. Held by CSerializationContext. Readers and writers only look at them, so one context
/// serves any number at a time as long as nobody changes it.
class QZXMLLIB_API CFastInfosetContext
{
public:
    enum EncodedCharacterStringKind : std::uint32_t
    {
        ECS_DefaultEncoding = 0,    ///< literally, in UTF-8
        ECS_RestrictedAlphabet = 1, ///< through alphabet 1 (numbers) or 2 (dates and times) of X.891 clause 9
        ECS_EncodingAlgorithm = 2   ///< through one of the built-in encoding algorithms 1 to 10 of X.891 clause 10
    };

    /// The form in which the values of one primitive kind travel.
    struct EncodedCharacterString
    {
        /// One of EncodedCharacterStringKind.
        std::uint32_t m_eKind = ECS_DefaultEncoding;
        /// Of the alphabet or the algorithm, from 1 on. Not looked at for ECS_DefaultEncoding.
        std::uint32_t m_dwIndex = 0;
    };

    CFastInfosetContext();
    CFastInfosetContext(CFastInfosetContext const &) = delete;
    CFastInfosetContext & operator=(CFastInfosetContext const & other);
    ~CFastInfosetContext();

    /// The row of an ItemType. Numbers of 29 and above give the default encoding.
    EncodedCharacterString GetEncoding(unsigned long nItemType) const
    {
        return nItemType < kItemTypes ? m_encodings[nItemType] : EncodedCharacterString();
    }
    /// Throws CQzInvalidParamException for numbers of 29 and above.
    void SetEncoding(unsigned long nItemType, EncodedCharacterString const & encoding);
    /// Sets the short forms for all kinds but text: numbers and binary data through algorithms, dates and decimals
    /// through alphabets. Unless GetStrict(), a date and time with a fraction of a second or a plus sign, and a decimal
    /// with an upper-case exponent, then fail to be written. Values come back in the spelling that the algorithm gives
    /// them: "07" of ItemType_i4 as "7". A short text that was seen before goes out as an index to the first, whatever
    /// its kind, and so may come back respelled as well.
    void SetSuggestedValues();

    /// Strings of as many UTF-16 code units or more do not enter the tables and are written out each time. 6 at first.
    unsigned long GetAttributeMaxAddLength() const { return m_dwAttributeMaxAddLength; }
    void SetAttributeMaxAddLength(unsigned long nUnits);
    unsigned long GetElementMaxAddLength() const { return m_dwElementMaxAddLength; }
    void SetElementMaxAddLength(unsigned long nUnits);

    /// True makes readers and writers start with a copy of GetVocabulary(). The two sides must hold the same entries,
    /// which are not part of the document. False at first.
    bool GetUseGeneratedVocabulary() const { return m_bUseGeneratedVocabulary; }
    void SetUseGeneratedVocabulary(bool bValue) { m_bUseGeneratedVocabulary = bValue; }
    /// The vocabulary of this context, to be filled. Never changed by reading or writing.
    CFIVocabulary * GetVocabulary() { return &m_vocabulary; }
    CFIVocabulary const * GetVocabulary() const { return &m_vocabulary; }

    /// Named by documents that are written with a generated vocabulary. Empty stands for a URI of this library.
    std::u16string GetExternalVocabularyURI() const { return m_strExternalVocabularyURI; }
    void SetExternalVocabularyURI(std::u16string const & strURI) { m_strExternalVocabularyURI = strURI; }

    /// Writing: documents that other decoders of X.891 read as well. Each namespace is declared on the element that
    /// first uses it, also those of made-up prefixes and no namespace below a default one; a type is named by an
    /// attribute with a prefix of XML Schema instances; a value that its short form cannot hold is written as text in
    /// place of a failure; and values in the form of an algorithm stay out of the tables, where decoders differ. False
    /// at first: declarations stand on the root alone. Reading takes both.
    bool GetStrict() const { return m_bStrict; }
    void SetStrict(bool bStrict) { m_bStrict = bStrict; }

    /// 0, which is UTF-8.
    unsigned char GetDefaultStringEncoding() const { return m_byDefaultStringEncoding; }

private:
    static constexpr unsigned long kItemTypes = 29;

    unsigned char m_byDefaultStringEncoding = 0;
    EncodedCharacterString m_encodings[kItemTypes];
    std::uint32_t m_dwAttributeMaxAddLength = 6;
    std::uint32_t m_dwElementMaxAddLength = 6;
    bool m_bUseGeneratedVocabulary = false;
    bool m_bStrict = false;
    CFIVocabulary m_vocabulary;
    std::u16string m_strExternalVocabularyURI;
};

} // namespace QzXmlLib16
