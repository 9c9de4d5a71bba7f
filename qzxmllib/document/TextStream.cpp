#include "qzxmllib/document/TextStream.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/OctetChainInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/Utf8Internal.h"
#include "qzxmllib/values/BinaryData.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <typeinfo>
#include <utility>

namespace QzXmlLib16
{

namespace
{

/// A flush comes at 4096 code units or a little more, so blocks of this size make it find one block, which is reused.
constexpr std::uint32_t kTextBlockSize = 8192;

/// Code units encoded at a time, so that the room kept free behind a block stays small against it.
constexpr std::size_t kEncodeUnits = 4096;

/// The octets of UTF-16, low octet first, of the text up to its first code unit 0.
CBinaryData EncodeUtf16(CStringBuffer const & buffer)
{
    std::size_t nUnits = 0;
    for (std::size_t nIndex = 0; nIndex < buffer.GetBlockCount(); ++nIndex)
    {
        std::u16string_view const block = buffer.GetBlock(nIndex);
        std::size_t const nUpToZero = UpToZero(block).size();
        nUnits += nUpToZero;
        if (nUpToZero != block.size())
            break;
    }
    CNewOctets octets(nUnits * 2);
    unsigned char * pTo = octets.Get();
    for (std::size_t nIndex = 0; nUnits != 0; ++nIndex)
    {
        std::u16string_view const block = buffer.GetBlock(nIndex).substr(0, nUnits);
        for (char16_t const c : block)
        {
            *pTo++ = static_cast<unsigned char>(c & 0xFF);
            *pTo++ = static_cast<unsigned char>(c >> 8);
        }
        nUnits -= block.size();
    }
    return octets.Adopt();
}

} // namespace

CTextStream::CTextStream() : CTextStream(XmlEncoding_None) {}

CTextStream::CTextStream(XmlEncoding eEncoding) : CTextStream(u"CTextStream", eEncoding) {}

CTextStream::CTextStream(char16_t const * pszInstanceName, XmlEncoding eEncoding)
    : CInstanceMonitor(pszInstanceName), m_buffer(kTextBlockSize), m_eEncoding(eEncoding)
{
    if (eEncoding == XmlEncoding_UTF8)
        m_spOctets = std::make_unique<COctetChain>();
}

CTextStream::~CTextStream() = default;

void CTextStream::Open()
{
    Drop();
    m_buffer.Reset();
}

void CTextStream::Close() {}

void CTextStream::Flush()
{
    // A class derived from this one finds all text in its buffer.
    if (m_eEncoding == XmlEncoding_UTF8 && !m_bStayWide && typeid(*this) == typeid(CTextStream))
        m_bStayWide = !EncodePending();
}

unsigned long CTextStream::GetLength() const noexcept
{
    return static_cast<unsigned long>(EncodedUnits() + m_buffer.GetLength());
}

char16_t const * CTextStream::GetText()
{
    RestoreText();
    return m_buffer.GetText();
}

std::u16string CTextStream::TakeText()
{
    RestoreText();
    Drop();
    return m_buffer.TakeText();
}

CBinaryData CTextStream::GetBinary()
{
    return Join(false);
}

CBinaryData CTextStream::TakeBinary()
{
    CBinaryData data = Join(true);
    Drop();
    m_buffer.Reset();
    return data;
}

CBinaryData CTextStream::EncodeBuffer(std::size_t nFirst)
{
    switch (m_eEncoding)
    {
    case XmlEncoding_UTF8:
    {
        char16_t const * const pText = m_buffer.GetText();
        return EncodeUtf8Counted(UpToZero({pText, m_buffer.GetLength()}), nFirst);
    }
    case XmlEncoding_UTF16:
    case XmlEncoding_UTF16NoDecl:
        return EncodeUtf16(m_buffer);
    default:
        throw CQzException(u"Unknown Encoding, select UTF-8 (contact our support team)");
    }
}

char16_t CTextStream::HoldBackHighSurrogate()
{
    std::size_t const nUnits = m_buffer.GetLength();
    if (nUnits == 0)
        return 0;
    char16_t const c = m_buffer.GetText()[nUnits - 1];
    if (!IsHighSurrogate(c))
        return 0;
    m_buffer.DropLast();
    return c;
}

/// Moves the octets of the buffer behind those that there are. A text that cannot be converted whole, and one that
/// holds a code unit 0, stays as it is, and false is given: what to do with it is decided when it is asked for.
bool CTextStream::EncodePending()
{
    COctetChain & octets = *m_spOctets;
    COctetChain::Mark const before = octets.GetMark();

    char16_t cHigh = 0; // the first half of a pair, when the second lies in the next block or is still to come
    bool bGood = true;
    auto const encode = [&octets](std::u16string_view text)
    {
        NarrowResult const result = NarrowUtf8(text.data(), text.size(), octets.Room(text.size() * 3));
        octets.Commit(result.nOctets, result.nUnits);
        return result.nUnits;
    };
    for (std::size_t nIndex = 0; bGood && nIndex < m_buffer.GetBlockCount(); ++nIndex)
    {
        std::u16string_view block = m_buffer.GetBlock(nIndex);
        while (bGood && !block.empty())
        {
            if (cHigh != 0)
            {
                char16_t const aPair[2] = {cHigh, block[0]};
                bGood = encode({aPair, 2}) == 2;
                cHigh = 0;
                block.remove_prefix(1);
                continue;
            }
            std::u16string_view const stretch = block.substr(0, kEncodeUnits);
            std::size_t const nDone = encode(stretch);
            block.remove_prefix(nDone);
            if (nDone == stretch.size())
                continue;
            bGood = nDone + 1 == stretch.size() && IsHighSurrogate(stretch[nDone]);
            if (bGood)
            {
                cHigh = stretch[nDone];
                block.remove_prefix(1);
            }
        }
    }

    if (!bGood)
    {
        octets.GoBack(before);
        return false;
    }
    m_buffer.Reset();
    if (cHigh != 0)
        m_buffer.Append(cHigh);
    return true;
}

COctetChain * CTextStream::EncodeForOctets()
{
    m_bStayWide = !EncodePending();
    return m_buffer.GetLength() == 0 ? m_spOctets.get() : nullptr;
}

std::size_t CTextStream::EncodedUnits() const noexcept
{
    return m_spOctets != nullptr ? m_spOctets->GetUnits() : 0;
}

/// Turns what was encoded back into text in front of the buffer, for those who want the text of a stream of octets.
void CTextStream::RestoreText()
{
    if (m_spOctets == nullptr || m_spOctets->IsEmpty())
        return;
    std::size_t const nUnits = EncodedUnits() + m_buffer.GetLength();
    if (nUnits > std::numeric_limits<std::uint32_t>::max())
        throw CQzException(u"Text too large.");
    CStringBuffer::CBlock spText = CStringBuffer::NewBlock(static_cast<std::uint32_t>(nUnits));
    char16_t * pTo = spText.get();
    m_spOctets->ForEachBlock([&pTo](std::string_view block) { pTo += WidenUtf8(block.data(), block.size(), pTo); });
    for (std::size_t nIndex = 0; nIndex < m_buffer.GetBlockCount(); ++nIndex)
    {
        std::u16string_view const block = m_buffer.GetBlock(nIndex);
        pTo = std::copy(block.begin(), block.end(), pTo);
    }
    m_buffer.Adopt(std::move(spText), static_cast<std::uint32_t>(nUnits));
    bool const bStayWide = m_bStayWide;
    Drop();
    m_bStayWide = bStayWide;
}

void CTextStream::Drop() noexcept
{
    if (m_spOctets != nullptr)
        m_spOctets->Clear();
    m_bStayWide = false;
}

CBinaryData CTextStream::Join(bool bTake)
{
    if (m_spOctets == nullptr || m_spOctets->IsEmpty())
        return EncodeBuffer(0);
    std::u16string_view const rest = UpToZero({m_buffer.GetText(), m_buffer.GetLength()});
    return bTake ? m_spOctets->Take(rest) : m_spOctets->Copy(rest);
}

} // namespace QzXmlLib16
