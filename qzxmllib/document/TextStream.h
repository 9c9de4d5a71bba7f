#pragma once

#include "qzxmllib/document/StringBuffer.h"
#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Forward.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace QzXmlLib16
{

class COctetChain;

/// Collects the text that a writer produces and gives it back as text or, by its encoding, as octets. Lives for one
/// output on one thread. With XmlEncoding_UTF8 each full stretch is kept as octets only, so the wide text is never
/// held whole; in a class derived from this one all text stays in m_buffer.
class QZXMLLIB_API CTextStream : public CInstanceMonitor
{
public:
    /// Wide text; GetBinary is not possible.
    CTextStream();
    explicit CTextStream(XmlEncoding eEncoding);
    CTextStream(CTextStream const &) = delete;
    CTextStream & operator=(CTextStream const &) = delete;
    ~CTextStream() override;

    /// Drops what was collected and starts anew.
    virtual void Open();
    virtual void Close();
    /// Called by a writer at the end of an operation when NeedsFlush() is true.
    virtual void Flush();

    void Write(char16_t c) { m_buffer.Append(c); }
    void Write(char16_t const * pText) { m_buffer.Append(pText); }
    /// Writes up to the first code unit 0.
    void Write(std::u16string const & strText) { m_buffer.Append(strText); }
    /// Writes exactly nUnits code units.
    void Write(char16_t const * pText, std::size_t nUnits) { m_buffer.Append(pText, nUnits); }

    /// Room in the buffer, as CStringBuffer::Room and Commit.
    char16_t * Room(std::size_t nUnits) noexcept { return m_buffer.Room(nUnits); }
    void Commit(std::size_t nUnits) noexcept { m_buffer.Commit(nUnits); }

    /// Where a writer may put octets of UTF-8 behind all text so far instead of code units. Null if the stream is not
    /// for octets, and while its text cannot be encoded.
    COctetChain * GetOctets()
    {
        if (m_spOctets == nullptr || m_bStayWide)
            return nullptr;
        return m_buffer.GetLength() == 0 ? m_spOctets.get() : EncodeForOctets();
    }

    /// Code units collected and not given to a file.
    unsigned long GetLength() const noexcept;
    XmlEncoding GetEncoding() const noexcept { return m_eEncoding; }
    /// All text collected and not given to a file, terminated, never null. The pointer holds until the next change.
    char16_t const * GetText();
    /// The octets of the text up to its first code unit 0, without a byte order mark. Throws CQzException for
    /// XmlEncoding_None, and in UTF-8 for a lone surrogate, with its position in the whole text.
    CBinaryData GetBinary();

    /// As GetBinary and GetText, but the stream is empty afterwards. They need less memory, as blocks are freed while
    /// they are copied.
    CBinaryData TakeBinary();
    std::u16string TakeText();

    /// Whether enough text has collected for a flush.
    bool NeedsFlush() const noexcept { return m_buffer.GetLength() >= 4096; }

protected:
    CTextStream(char16_t const * pszInstanceName, XmlEncoding eEncoding);

    /// The octets of the text in the buffer, whose first code unit is number nFirst of the whole text.
    CBinaryData EncodeBuffer(std::size_t nFirst);
    /// Takes a high surrogate from the end of the buffer, whose other half is still to come. Gives 0 if there is none.
    char16_t HoldBackHighSurrogate();

    CStringBuffer m_buffer;
    XmlEncoding m_eEncoding;

private:
    bool EncodePending();
    COctetChain * EncodeForOctets();
    std::size_t EncodedUnits() const noexcept;
    void RestoreText();
    void Drop() noexcept;
    CBinaryData Join(bool bTake);

    std::unique_ptr<COctetChain> m_spOctets; ///< null unless the encoding is UTF-8
    bool m_bStayWide = false;
};

} // namespace QzXmlLib16
