#include "qzxmllib/document/QzZip.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>
#include <zlib.h>

namespace QzXmlLib16
{

namespace
{

constexpr int kLevel = Z_BEST_SPEED;
/// A window of 32 KiB; 16 more asks for the gzip wrapper, 32 more for either wrapper as it comes.
constexpr int kWindowGZip = 15 + 16;
constexpr int kWindowEither = 15 + 32;
constexpr int kMemoryLevel = 8;

constexpr unsigned long kLongest = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t kFirstChunk = 65536;
constexpr std::size_t kLargestChunk = std::size_t(1) << 22;

/// Output of decompression, in chunks so that nothing is copied while it grows.
class CChunks
{
public:
    explicit CChunks(std::uint64_t nLimit) : m_nLimit(nLimit) {}

    std::uint64_t GetLength() const { return m_nLength; }
    /// True when one more octet would be too many.
    bool IsOver() const { return m_nLength > m_nLimit; }
    /// Forgets what lies behind a length.
    void Truncate(std::uint64_t nLength)
    {
        while (!m_chunks.empty() && m_nFirstOfLast >= nLength && m_chunks.size() > 1)
        {
            m_chunks.pop_back();
            m_nFirstOfLast -= m_chunks.back().nOctets;
        }
        m_nLength = nLength;
    }
    void Offer(z_stream & stream)
    {
        if (m_chunks.empty() || m_nLength - m_nFirstOfLast == m_chunks.back().nOctets)
        {
            std::size_t const nOctets =
                m_chunks.empty() ? kFirstChunk : std::min(2 * m_chunks.back().nOctets, kLargestChunk);
            m_nFirstOfLast = m_nLength;
            m_chunks.push_back({std::unique_ptr<unsigned char[]>(new unsigned char[nOctets]), nOctets});
        }
        auto const nUsed = static_cast<std::size_t>(m_nLength - m_nFirstOfLast);
        stream.next_out = m_chunks.back().pOctets.get() + nUsed;
        stream.avail_out = static_cast<uInt>(m_chunks.back().nOctets - nUsed);
    }
    void Take(z_stream const & stream)
    {
        m_nLength = m_nFirstOfLast + static_cast<std::uint64_t>(stream.next_out - m_chunks.back().pOctets.get());
    }
    /// All octets in one array from array new, or null for none. The chunks are gone afterwards.
    unsigned char * Join()
    {
        if (m_nLength == 0)
            return nullptr;
        std::unique_ptr<unsigned char[]> pAll(new unsigned char[m_nLength]);
        std::uint64_t nDone = 0;
        for (Chunk & chunk : m_chunks)
        {
            auto const nOctets = static_cast<std::size_t>(std::min<std::uint64_t>(chunk.nOctets, m_nLength - nDone));
            std::memcpy(pAll.get() + nDone, chunk.pOctets.get(), nOctets);
            nDone += nOctets;
            chunk.pOctets.reset();
        }
        return pAll.release();
    }

private:
    struct Chunk
    {
        std::unique_ptr<unsigned char[]> pOctets;
        std::size_t nOctets;
    };

    std::uint64_t m_nLimit;
    std::uint64_t m_nLength = 0;
    /// Place of the first octet of the last chunk.
    std::uint64_t m_nFirstOfLast = 0;
    std::vector<Chunk> m_chunks;
};

class CInflater
{
public:
    CInflater() { m_bGood = inflateInit2(&m_stream, kWindowEither) == Z_OK; }
    CInflater(CInflater const &) = delete;
    CInflater & operator=(CInflater const &) = delete;
    ~CInflater()
    {
        if (m_bGood)
            inflateEnd(&m_stream);
    }

    /// Decompresses one stream and moves pData and nLength behind it. False, with nothing moved, if the octets are no
    /// complete stream or their plain form passes the limit of the chunks.
    bool Run(unsigned char const *& pData, unsigned long & nLength, CChunks & chunks)
    {
        if (!m_bGood)
            return false;
        m_stream.next_in = const_cast<Bytef *>(pData);
        m_stream.avail_in = static_cast<uInt>(nLength);
        std::uint64_t const nBefore = chunks.GetLength();
        int nResult = Z_OK;
        while (nResult == Z_OK && !chunks.IsOver())
        {
            chunks.Offer(m_stream);
            nResult = inflate(&m_stream, Z_NO_FLUSH);
            chunks.Take(m_stream);
        }
        if (chunks.IsOver())
            return false;
        if (nResult != Z_STREAM_END)
        {
            chunks.Truncate(nBefore);
            return false;
        }
        pData = m_stream.next_in;
        nLength = m_stream.avail_in;
        return true;
    }

private:
    z_stream m_stream = {};
    bool m_bGood = false;
};

bool IsGZipHead(unsigned char const * pData, unsigned long nLength)
{
    return nLength >= 2 && pData[0] == 0x1F && pData[1] == 0x8B;
}

/// What inflate asks of the first two octets of a zlib stream: the method, the window, and a multiple of 31.
bool IsZLibHead(unsigned char const * pData, unsigned long nLength)
{
    return nLength >= 2 && (pData[0] & 0x0F) == Z_DEFLATED && (pData[0] >> 4) <= 7 &&
           (pData[0] * 256 + pData[1]) % 31 == 0;
}

/// Compresses an array into a new one of the same size, whose used length nOut receives.
std::unique_ptr<unsigned char[]> Deflate(
    unsigned char const * pData, unsigned long nLength, CompressionType eType, unsigned long & nOut)
{
    std::unique_ptr<unsigned char[]> pOut(new unsigned char[nLength]);
    z_stream stream = {};
    stream.next_in = const_cast<Bytef *>(pData);
    stream.avail_in = static_cast<uInt>(nLength);
    stream.next_out = pOut.get();
    stream.avail_out = static_cast<uInt>(nLength);
    int nResult = nLength > kLongest ? Z_BUF_ERROR
                  : eType == CompressionType_GZip
                      ? deflateInit2(&stream, kLevel, Z_DEFLATED, kWindowGZip, kMemoryLevel, Z_DEFAULT_STRATEGY)
                      : deflateInit(&stream, kLevel);
    if (nResult == Z_OK)
    {
        deflate(&stream, Z_NO_FLUSH);
        nResult = deflate(&stream, Z_FINISH);
        deflateEnd(&stream);
    }
    if (nResult != Z_STREAM_END)
        throw CQzException(FormatString(u"Failed to compress data. [Error Code: %d]", nResult));
    nOut = stream.total_out;
    return pOut;
}

bool IsContainer(CompressionType eType)
{
    return eType == CompressionType_GZip || eType == CompressionType_ZLib;
}

} // namespace

CQzZip::CQzZip() : CInstanceMonitor(u"CQzZip") {}

CQzZip::~CQzZip() = default;

void CQzZip::Compress(CBinaryData & data, CompressionType eType)
{
    if (data.GetLength() == 0 || !IsContainer(eType))
        return;
    unsigned long nOut = 0;
    std::unique_ptr<unsigned char[]> pOut = Deflate(data.GetData(), data.GetLength(), eType, nOut);
    data = CBinaryData(pOut.get(), nOut, true);
    static_cast<void>(pOut.release());
}

void CQzZip::Compress(unsigned char ** ppData, unsigned long * pnLength, CompressionType eType)
{
    if (!IsContainer(eType))
        return;
    unsigned long nOut = 0;
    std::unique_ptr<unsigned char[]> pOut = Deflate(*ppData, *pnLength, eType, nOut);
    delete[] * ppData;
    *ppData = pOut.release();
    *pnLength = nOut;
}

void CQzZip::Decompress(unsigned char ** ppData, unsigned long * pnLength)
{
    unsigned char * pPlain = nullptr;
    unsigned long nPlain = 0;
    if (!Decompress(*ppData, *pnLength, 0, &pPlain, &nPlain))
        return;
    delete[] * ppData;
    *ppData = pPlain;
    *pnLength = nPlain;
}

bool CQzZip::Decompress(unsigned char const * pData, unsigned long nLength, std::uint64_t nLimit,
    unsigned char ** ppPlain, unsigned long * pnPlainLength)
{
    // Plain text is told by its first octets, before anything is allocated.
    bool const bGZip = IsGZipHead(pData, nLength);
    if ((!bGZip && !IsZLibHead(pData, nLength)) || nLength > kLongest)
        return false;
    bool const bLimited = nLimit != 0 && nLimit < kLongest;
    CChunks chunks(bLimited ? nLimit : kLongest);
    bool bComplete = CInflater().Run(pData, nLength, chunks);
    bool const bCompressed = bComplete;
    // RFC 1952 takes further members for the rest of the same data. A broken one counts like any other octets behind.
    while (bComplete && bGZip && IsGZipHead(pData, nLength))
        bComplete = CInflater().Run(pData, nLength, chunks);
    if (chunks.IsOver())
    {
        if (bLimited)
            throw CQzException(FormatString(u"The decompressed data exceed the limit of %d bytes.", nLimit));
        return false;
    }
    if (!bCompressed)
        return false;
    *pnPlainLength = static_cast<unsigned long>(chunks.GetLength());
    *ppPlain = chunks.Join();
    return true;
}

} // namespace QzXmlLib16
