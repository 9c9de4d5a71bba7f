#include "qzxmllib/values/BinaryData.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/Base64.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

namespace QzXmlLib16
{

/// Octets with the number of their holders. A buffer with more than one holder is never written, and the only holder
/// needs no lock to write: nobody else can reach the buffer to take a count of it.
class CBinaryDataBuffer
{
public:
    static CBinaryDataBuffer * Adopt(unsigned char * pOctets, std::size_t nOctets)
    {
        std::uint32_t const dwLen = RequireLength(nOctets);
        return new CBinaryDataBuffer(pOctets, dwLen, dwLen);
    }

    static CBinaryDataBuffer * Copy(unsigned char const * pOctets, std::size_t nOctets)
    {
        std::uint32_t const dwLen = RequireLength(nOctets);
        std::uint32_t const nCapacity = Clamp(std::max(std::uint64_t(dwLen) * 2, kMinCapacity));
        std::unique_ptr<unsigned char[]> pCopy(new unsigned char[nCapacity]);
        std::memcpy(pCopy.get(), pOctets, nOctets);
        auto * const pBuffer = new CBinaryDataBuffer(pCopy.get(), dwLen, nCapacity);
        pCopy.release();
        return pBuffer;
    }

    void AddRef() noexcept { m_refCount.fetch_add(1, std::memory_order_relaxed); }

    void Release() noexcept
    {
        if (m_refCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

    /// Hands the octets over and deletes the buffer, which must have this one holder only.
    unsigned char * ReleaseKeepingData()
    {
        std::int32_t const nLeft = m_refCount.load(std::memory_order_acquire) - 1;
        if (nLeft > 0)
            throw CQzException(FormatString(u"Failed to release data. [RefCount=%d]", nLeft));
        unsigned char * const pOctets = m_lpData;
        m_lpData = nullptr;
        delete this;
        return pOctets;
    }

    /// This buffer if it has one holder; else a new one with the same octets, in exchange for a count of this one.
    CBinaryDataBuffer * Unshare()
    {
        if (m_refCount.load(std::memory_order_acquire) < 2)
            return this;
        CBinaryDataBuffer * const pCopy = Copy(m_lpData, m_dwLen);
        Release();
        return pCopy;
    }

    /// The octets must fit, by RequireLength.
    void AppendData(unsigned char const * pOctets, std::size_t nOctets)
    {
        std::int32_t const nCount = m_refCount.load(std::memory_order_acquire);
        if (nCount != 1)
            throw CQzException(FormatString(u"Failed to append. [RefCount=%d]", nCount));
        if (nOctets > m_dwCapacity - m_dwLen)
        {
            std::uint32_t const nCapacity = Clamp((std::uint64_t(m_dwLen) + nOctets) * 2);
            std::unique_ptr<unsigned char[]> pMoved(new unsigned char[nCapacity]);
            std::memcpy(pMoved.get(), m_lpData, m_dwLen);
            // The source may lie inside the old block, so that block goes last.
            std::memcpy(pMoved.get() + m_dwLen, pOctets, nOctets);
            delete[] m_lpData;
            m_lpData = pMoved.release();
            m_dwCapacity = nCapacity;
        }
        else
        {
            std::memcpy(m_lpData + m_dwLen, pOctets, nOctets);
        }
        m_dwLen += static_cast<std::uint32_t>(nOctets);
    }

    unsigned char * GetData() const noexcept { return m_lpData; }
    std::uint32_t GetLength() const noexcept { return m_dwLen; }

    /// The length, or CQzException if so many octets do not fit behind those that there are.
    static std::uint32_t RequireLength(std::size_t nOctets, std::uint32_t nBefore = 0)
    {
        if (nOctets > kMaxLength - nBefore)
            throw CQzException(u"Binary data too large.");
        return static_cast<std::uint32_t>(nOctets);
    }

private:
    static constexpr std::uint64_t kMaxLength = std::numeric_limits<std::uint32_t>::max();
    static constexpr std::uint64_t kMinCapacity = 8192;

    static std::uint32_t Clamp(std::uint64_t nOctets)
    {
        return static_cast<std::uint32_t>(std::min(nOctets, kMaxLength));
    }

    CBinaryDataBuffer(unsigned char * pOctets, std::uint32_t nOctets, std::uint32_t nCapacity) noexcept
        : m_lpData(pOctets), m_dwLen(nOctets), m_dwCapacity(nCapacity)
    {
    }
    ~CBinaryDataBuffer() { delete[] m_lpData; }

    unsigned char * m_lpData;
    std::uint32_t m_dwLen;
    std::uint32_t m_dwCapacity;
    std::atomic<std::int32_t> m_refCount{1};
};

CBinaryData::CBinaryData(CBinaryData const & other) noexcept : m_pBuffer(other.m_pBuffer)
{
    if (m_pBuffer != nullptr)
        m_pBuffer->AddRef();
}

CBinaryData::CBinaryData(CBinaryData && other) noexcept : m_pBuffer(other.m_pBuffer)
{
    other.m_pBuffer = nullptr;
}

CBinaryData::CBinaryData(unsigned char * pOctets, std::size_t nOctets, bool bAdopt)
{
    if (nOctets != 0)
        m_pBuffer = bAdopt ? CBinaryDataBuffer::Adopt(pOctets, nOctets) : CBinaryDataBuffer::Copy(pOctets, nOctets);
}

CBinaryData::CBinaryData(unsigned char const * pOctets, std::size_t nOctets)
{
    if (nOctets != 0)
        m_pBuffer = CBinaryDataBuffer::Copy(pOctets, nOctets);
}

CBinaryData::CBinaryData(char16_t const * pText)
{
    Append(pText);
}

CBinaryData & CBinaryData::operator=(CBinaryData const & other) noexcept
{
    CBinaryData copy(other);
    std::swap(m_pBuffer, copy.m_pBuffer);
    return *this;
}

CBinaryData & CBinaryData::operator=(CBinaryData && other) noexcept
{
    std::swap(m_pBuffer, other.m_pBuffer);
    return *this;
}

CBinaryData::~CBinaryData()
{
    Clear();
}

void CBinaryData::Clear() noexcept
{
    if (m_pBuffer == nullptr)
        return;
    CBinaryDataBuffer * const pBuffer = m_pBuffer;
    m_pBuffer = nullptr;
    pBuffer->Release();
}

unsigned char * CBinaryData::GetData() const noexcept
{
    return m_pBuffer != nullptr ? m_pBuffer->GetData() : nullptr;
}

std::uint32_t CBinaryData::GetLength() const noexcept
{
    return m_pBuffer != nullptr ? m_pBuffer->GetLength() : 0;
}

unsigned char * CBinaryData::ReleaseData()
{
    if (m_pBuffer == nullptr)
        return nullptr;
    Unshare();
    unsigned char * const pOctets = m_pBuffer->ReleaseKeepingData();
    m_pBuffer = nullptr;
    return pOctets;
}

void CBinaryData::Unshare()
{
    m_pBuffer = m_pBuffer->Unshare();
}

void CBinaryData::Append(unsigned char const * pOctets, std::size_t nOctets)
{
    if (nOctets == 0)
        return;
    CBinaryDataBuffer::RequireLength(nOctets, GetLength());
    if (m_pBuffer == nullptr)
    {
        m_pBuffer = CBinaryDataBuffer::Copy(pOctets, nOctets);
        return;
    }
    // Octets of this very buffer stay readable through a second handle while the buffer is exchanged.
    std::uintptr_t const nFirst = reinterpret_cast<std::uintptr_t>(GetData());
    std::uintptr_t const nSource = reinterpret_cast<std::uintptr_t>(pOctets);
    if (nSource >= nFirst && nSource < nFirst + GetLength())
    {
        std::string const strOwn(reinterpret_cast<char const *>(pOctets), nOctets);
        Unshare();
        m_pBuffer->AppendData(reinterpret_cast<unsigned char const *>(strOwn.data()), nOctets);
        return;
    }
    Unshare();
    m_pBuffer->AppendData(pOctets, nOctets);
}

void CBinaryData::Append(unsigned char by)
{
    Append(&by, 1);
}

void CBinaryData::Append(char16_t c)
{
    AppendWide(&c, 1);
}

void CBinaryData::AppendWide(char16_t const * pText, std::size_t nUnits)
{
    // No text is so long that this wraps.
    CBinaryDataBuffer::RequireLength(nUnits * 2, GetLength());
    // A code unit goes out low octet first, which is how this processor holds it where it is little-endian.
    static constexpr std::size_t kChunk = 2048;
    unsigned char aOctets[kChunk * 2];
    for (std::size_t nPos = 0; nPos < nUnits; nPos += kChunk)
    {
        std::size_t const nPart = std::min(kChunk, nUnits - nPos);
        for (std::size_t i = 0; i < nPart; ++i)
        {
            aOctets[2 * i] = static_cast<unsigned char>(pText[nPos + i] & 0xFF);
            aOctets[2 * i + 1] = static_cast<unsigned char>(pText[nPos + i] >> 8);
        }
        Append(aOctets, nPart * 2);
    }
}

void CBinaryData::Append(char16_t const * pText)
{
    if (pText != nullptr)
        AppendWide(pText, std::u16string_view(pText).size());
}

void CBinaryData::Append(std::u16string const & strText)
{
    AppendWide(strText.data(), strText.size());
}

void CBinaryData::Append(CBinaryData const & other)
{
    CBinaryData const held(other);
    Append(held.GetData(), held.GetLength());
}

void CBinaryData::SetBuffer(unsigned char const * pOctets, std::size_t nOctets)
{
    CBinaryData const held(pOctets, nOctets);
    *this = held;
}

void CBinaryData::SetBuffer(char16_t const * pText)
{
    *this = CBinaryData(pText);
}

unsigned char const & CBinaryData::operator[](std::uint32_t nIndex) const
{
    if (nIndex >= GetLength())
        throw CQzException(FormatString(u"Index Out of range [%d]", nIndex));
    return m_pBuffer->GetData()[nIndex];
}

unsigned char & CBinaryData::operator[](std::uint32_t nIndex)
{
    if (nIndex >= GetLength())
        throw CQzException(FormatString(u"Index Out of range [%d]", nIndex));
    Unshare();
    return m_pBuffer->GetData()[nIndex];
}

bool CBinaryData::Equals(CBinaryData const & other) const noexcept
{
    if (m_pBuffer == other.m_pBuffer)
        return true;
    return GetLength() == other.GetLength() &&
           (GetLength() == 0 || std::memcmp(GetData(), other.GetData(), GetLength()) == 0);
}

std::u16string CBinaryData::GetAsBase64() const
{
    return CBase64(GetData(), GetLength()).Encode();
}

void CBinaryData::SetAsBase64(char16_t const * pText)
{
    SetAsBase64(std::u16string_view(pText != nullptr ? pText : u""));
}

void CBinaryData::SetAsBase64(std::u16string_view text)
{
    Clear();
    if (text.empty())
        return;
    std::size_t const nRoom = text.size() / 4 * 3 + 3;
    CBinaryDataBuffer::RequireLength(nRoom);
    std::unique_ptr<unsigned char[]> pOctets(new unsigned char[nRoom]);
    std::size_t const nOctets = CBase64::Decode(text, pOctets.get());
    if (nOctets == 0)
        return;
    m_pBuffer = CBinaryDataBuffer::Adopt(pOctets.get(), nOctets);
    pOctets.release();
}

std::u16string CBinaryData::GetAsHexString() const
{
    return GetAsHexString(GetData(), GetLength());
}

std::u16string CBinaryData::GetAsHexString(unsigned char const * pOctets, std::size_t nOctets)
{
    static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
    if (pOctets == nullptr)
        return {};
    CBinaryDataBuffer::RequireLength(nOctets);
    std::u16string strText(nOctets * 2, u'0');
    for (std::size_t i = 0; i < nOctets; ++i)
    {
        strText[2 * i] = kDigits[pOctets[i] >> 4];
        strText[2 * i + 1] = kDigits[pOctets[i] & 0xF];
    }
    return strText;
}

void CBinaryData::SetAsHexString(char16_t const * pText)
{
    SetAsHexString(std::u16string_view(pText != nullptr ? pText : u""));
}

void CBinaryData::SetAsHexString(std::u16string_view text)
{
    Clear();
    unsigned char * pOctets = nullptr;
    std::uint32_t const nOctets = DecodeHex(text, &pOctets);
    std::unique_ptr<unsigned char[]> held(pOctets);
    if (nOctets == 0)
        return;
    m_pBuffer = CBinaryDataBuffer::Adopt(held.get(), nOctets);
    held.release();
}

namespace
{

unsigned HexDigit(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return static_cast<unsigned>(c - u'0');
    if (c >= u'A' && c <= u'F')
        return static_cast<unsigned>(c - u'A' + 10);
    if (c >= u'a' && c <= u'f')
        return static_cast<unsigned>(c - u'a' + 10);
    throw CQzException(FormatString(u"Invalid char in hex string [%c]", c));
}

} // namespace

std::uint32_t CBinaryData::ConvertToHexData(char16_t const * pText, unsigned char ** ppOctets)
{
    return DecodeHex(std::u16string_view(pText != nullptr ? pText : u""), ppOctets);
}

std::uint32_t CBinaryData::DecodeHex(std::u16string_view text, unsigned char ** ppOctets)
{
    *ppOctets = nullptr;
    if (text.size() % 2 != 0)
        throw CQzException(u"Invalid length in hex string");
    std::uint32_t const nOctets = CBinaryDataBuffer::RequireLength(text.size() / 2);
    if (nOctets == 0)
        return 0;
    std::unique_ptr<unsigned char[]> pResult(new unsigned char[nOctets]);
    for (std::size_t i = 0; i < nOctets; ++i)
        pResult[i] = static_cast<unsigned char>(HexDigit(text[2 * i]) << 4 | HexDigit(text[2 * i + 1]));
    *ppOctets = pResult.release();
    return nOctets;
}

} // namespace QzXmlLib16
