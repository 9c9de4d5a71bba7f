#pragma once

#include "qzxmllib/support/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

class CBinaryDataBuffer;

/// Byte string: the value of hexBinary and base64Binary and the payload of streams. A handle on a counted buffer that
/// is duplicated only when one of its holders writes, so a copy costs no copy of the octets. Handles on one buffer may
/// live on different threads; a single handle belongs to one thread at a time. A length is below 4 GiB; anything that
/// would pass it throws CQzException.
class QZXMLLIB_API CBinaryData
{
public:
    CBinaryData() noexcept = default;
    CBinaryData(CBinaryData const & other) noexcept;
    CBinaryData(CBinaryData && other) noexcept;
    /// With bAdopt the value takes over pOctets, which must come from array new; otherwise the octets are copied.
    /// With a length of 0 the value is empty and nothing is adopted, nor is it if the constructor throws.
    CBinaryData(unsigned char * pOctets, std::size_t nOctets, bool bAdopt);
    CBinaryData(unsigned char const * pOctets, std::size_t nOctets);
    /// The code units of the text, two octets each, low octet first, without the terminator.
    CBinaryData(char16_t const * pText);
    CBinaryData & operator=(CBinaryData const & other) noexcept;
    CBinaryData & operator=(CBinaryData && other) noexcept;
    virtual ~CBinaryData();

    void Clear() noexcept;
    /// The octets, or null for an empty value. Writing through the pointer changes every holder.
    unsigned char * GetData() const noexcept;
    std::uint32_t GetLength() const noexcept;
    /// Hands the octets to the caller, who frees them with array delete; null for an empty value. Other holders keep
    /// their octets; this value is empty afterwards.
    unsigned char * ReleaseData();

    void Append(unsigned char const * pOctets, std::size_t nOctets);
    void Append(unsigned char by);
    /// Two octets, low octet first.
    void Append(char16_t c);
    void Append(char16_t const * pText);
    void Append(std::u16string const & strText);
    void Append(CBinaryData const & other);
    void SetBuffer(unsigned char const * pOctets, std::size_t nOctets);
    void SetBuffer(char16_t const * pText);

    /// Throws CQzException when the index is not below GetLength().
    unsigned char const & operator[](std::uint32_t nIndex) const;
    /// As above; takes a copy of its own of shared octets first, also if the caller only reads.
    unsigned char & operator[](std::uint32_t nIndex);

    /// Text by RFC 4648 without line breaks.
    std::u16string GetAsBase64() const;
    /// Padding and white space are skipped wherever they stand. A text with any other character gives an empty value.
    void SetAsBase64(char16_t const * pText);
    void SetAsBase64(std::u16string_view text);
    /// Two upper-case digits for each octet.
    std::u16string GetAsHexString() const;
    static std::u16string GetAsHexString(unsigned char const * pOctets, std::size_t nOctets);
    /// Throws CQzException for an odd length or a character that is no hexadecimal digit; the value is empty then.
    void SetAsHexString(char16_t const * pText);
    void SetAsHexString(std::u16string_view text);

    friend bool operator==(CBinaryData const & a, CBinaryData const & b) noexcept { return a.Equals(b); }
    friend bool operator!=(CBinaryData const & a, CBinaryData const & b) noexcept { return !a.Equals(b); }

protected:
    /// Decodes hexadecimal text into a new array, which the caller frees with array delete. Gives its length; a length
    /// of 0 comes with a null pointer.
    static std::uint32_t ConvertToHexData(char16_t const * pText, unsigned char ** ppOctets);

private:
    static std::uint32_t DecodeHex(std::u16string_view text, unsigned char ** ppOctets);
    bool Equals(CBinaryData const & other) const noexcept;
    void Unshare();
    void AppendWide(char16_t const * pText, std::size_t nUnits);

    CBinaryDataBuffer * m_pBuffer = nullptr;
};

} // namespace QzXmlLib16
