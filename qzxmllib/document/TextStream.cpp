#include "qzxmllib/document/TextStream.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/support/BlockMemoryInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/Utf8Internal.h"
#include "qzxmllib/values/BinaryData.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace QzXmlLib16
{

namespace
{

/// A flush comes at 4096 code units or a little more, so blocks of this size make it find one block, which is reused.
constexpr std::uint32_t kTextBlockSize = 8192;

constexpr std::size_t kFirstOctetBlock = 32 * 1024;
constexpr std::size_t kLargestUsualOctetBlock = 256 * 1024;
/// From here on an output is large enough for blocks of large pages.
constexpr std::size_t kLargeOutput = 4 * 1024 * 1024;
constexpr std::size_t kLargeOctetBlock = 2 * 1024 * 1024;

/// Code units encoded at a time, so that the room kept free behind a block stays small against it.
constexpr std::size_t kEncodeUnits = 4096;

/// An array whose octets a CBinaryData takes over.
class CNewOctets
{
public:
    explicit CNewOctets(std::size_t nOctets) : m_nOctets(nOctets)
    {
        if (nOctets > std::numeric_limits<std::uint32_t>::max())
            throw CQzException(u"Binary data too large.");
        if (nOctets != 0)
        {
            m_spOctets.reset(new unsigned char[nOctets]);
            AdviseLargePages(m_spOctets.get(), nOctets);
        }
    }

    unsigned char * Get() const noexcept { return m_spOctets.get(); }

    CBinaryData Adopt()
    {
        CBinaryData data(m_spOctets.get(), m_nOctets, true);
        m_spOctets.release();
        return data;
    }

private:
    std::unique_ptr<unsigned char[]> m_spOctets;
    std::size_t m_nOctets;
};

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
}

CTextStream::~CTextStream() = default;

void CTextStream::OctetDeleter::operator()(unsigned char * pBlock) const noexcept
{
    GiveBackBlock(pBlock, nOctets);
}

void CTextStream::Open()
{
    Drop();
    m_buffer.Reset();
}

void CTextStream::Close() {}

void CTextStream::Flush()
{
    if (m_eEncoding == XmlEncoding_UTF8 && !m_bStayWide)
        m_bStayWide = !EncodePending();
}

unsigned long CTextStream::GetLength() const noexcept
{
    return static_cast<unsigned long>(m_nEncodedUnits + m_buffer.GetLength());
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
    std::size_t const nBlocksBefore = m_octetBlocks.size();
    std::size_t const nUsedBefore = nBlocksBefore == 0 ? 0 : m_octetBlocks.back().nUsed;
    std::size_t const nOctetsBefore = m_nOctets;
    std::size_t const nUnits = m_buffer.GetLength();

    char16_t cHigh = 0; // the first half of a pair, when the second lies in the next block or is still to come
    bool bGood = true;
    auto const encode = [&](std::u16string_view text)
    {
        NarrowResult const result = NarrowUtf8(text.data(), text.size(), OctetRoom(text.size() * 3));
        m_octetBlocks.back().nUsed += result.nOctets;
        m_nOctets += result.nOctets;
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
        m_octetBlocks.resize(nBlocksBefore);
        if (nBlocksBefore != 0)
            m_octetBlocks.back().nUsed = nUsedBefore;
        m_nOctets = nOctetsBefore;
        return false;
    }
    m_buffer.Reset();
    m_nEncodedUnits += nUnits;
    if (cHigh != 0)
    {
        m_buffer.Append(cHigh);
        --m_nEncodedUnits;
    }
    return true;
}

unsigned char * CTextStream::OctetRoom(std::size_t nOctets)
{
    if (m_octetBlocks.empty() || m_octetBlocks.back().nSize - m_octetBlocks.back().nUsed < nOctets)
    {
        std::size_t const nSize = m_octetBlocks.empty() ? kFirstOctetBlock
                                  : m_nOctets >= kLargeOutput
                                      ? kLargeOctetBlock
                                      : std::min(m_octetBlocks.back().nSize * 2, kLargestUsualOctetBlock);
        std::unique_ptr<unsigned char[], OctetDeleter> spOctets(
            static_cast<unsigned char *>(TakeBlock(nSize)), OctetDeleter{nSize});
        m_octetBlocks.push_back({std::move(spOctets), 0, nSize});
    }
    OctetBlock & block = m_octetBlocks.back();
    return block.spOctets.get() + block.nUsed;
}

/// Turns what was encoded back into text in front of the buffer, for those who want the text of a stream of octets.
void CTextStream::RestoreText()
{
    if (m_octetBlocks.empty())
        return;
    std::size_t const nUnits = m_nEncodedUnits + m_buffer.GetLength();
    if (nUnits > std::numeric_limits<std::uint32_t>::max())
        throw CQzException(u"Text too large.");
    CStringBuffer::CBlock spText = CStringBuffer::NewBlock(static_cast<std::uint32_t>(nUnits));
    char16_t * pTo = spText.get();
    for (OctetBlock const & block : m_octetBlocks)
        pTo += WidenUtf8(reinterpret_cast<char const *>(block.spOctets.get()), block.nUsed, pTo);
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
    m_octetBlocks.clear();
    m_nOctets = 0;
    m_nEncodedUnits = 0;
    m_bStayWide = false;
}

CBinaryData CTextStream::Join(bool bTake)
{
    if (m_octetBlocks.empty())
        return EncodeBuffer(0);
    std::u16string_view const rest = UpToZero({m_buffer.GetText(), m_buffer.GetLength()});
    CNewOctets octets(m_nOctets + CountUtf8(rest, m_nEncodedUnits));
    unsigned char * pTo = octets.Get();
    for (OctetBlock & block : m_octetBlocks)
    {
        std::memcpy(pTo, block.spOctets.get(), block.nUsed);
        pTo += block.nUsed;
        if (bTake)
            block.spOctets.reset();
    }
    NarrowUtf8(rest.data(), rest.size(), pTo);
    return octets.Adopt();
}

} // namespace QzXmlLib16
