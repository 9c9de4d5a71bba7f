#pragma once

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/document/OctetChainInternal.h"
#include "qzxmllib/document/TextCopyInternal.h"
#include "qzxmllib/document/TextStream.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace QzXmlLib16
{

// What the writers of text put into a stream in one piece: code units or, where the stream keeps octets of UTF-8,
// those straight away.

/// A text that is written often, and the same as octets.
struct TwinText
{
    std::u16string strWide;
    std::string strOctets; ///< as long as strWide, or empty if that is not all ASCII

    /// Fills both up so that CopyLoose may run over their end, and makes the octets.
    void Finish()
    {
        strWide.append(kLongestSlack, u' ');
        strOctets.resize(strWide.size());
        if (!NarrowPlain<CZero>(reinterpret_cast<unsigned char *>(&strOctets[0]), strWide))
            strOctets.clear();
    }
};

constexpr std::size_t kNoText = std::u16string_view::npos;

/// The octets of a text in UTF-8, or kNoText if something in it is not written as it stands or cannot be encoded.
template <class Care>
[[gnu::noinline]] std::size_t NarrowUnlessCare(unsigned char * pOut, std::u16string_view text)
{
    if (FindCare<Care>(text.data(), text.size()) != text.size())
        return kNoText;
    NarrowResult const result = NarrowUtf8(text.data(), text.size(), pOut);
    return result.nUnits == text.size() ? result.nOctets : kNoText;
}

/// Where elements and attributes go that are written in one piece: code units.
class CWideOut
{
public:
    explicit CWideOut(CTextStream & stream) noexcept : m_stream(stream) {}

    /// Null if there is not enough room in one piece.
    char16_t * Room(std::size_t nFixed, std::size_t nText) { return m_stream.Room(nFixed + nText + kSlack); }
    static char16_t const * Of(TwinText const & twin) noexcept { return twin.strWide.data(); }
    /// The length of the text as it was written, or kNoText.
    template <class Care>
    static std::size_t PutText(char16_t * pOut, std::u16string_view text) noexcept
    {
        return CopyPlain<Care>(pOut, text) ? text.size() : kNoText;
    }
    void Commit(std::size_t nLength, std::size_t, std::size_t) noexcept { m_stream.Commit(nLength); }

private:
    CTextStream & m_stream;
};

/// The same for octets.
class COctetOut
{
public:
    explicit COctetOut(COctetChain & octets) noexcept : m_octets(octets) {}

    unsigned char * Room(std::size_t nFixed, std::size_t nText)
    {
        std::size_t const nMost = nFixed + 3 * nText + kOctetSlack;
        return nMost <= COctetChain::kMostRoom ? m_octets.Room(nMost) : nullptr;
    }
    static char const * Of(TwinText const & twin) noexcept { return twin.strOctets.data(); }
    template <class Care>
    static std::size_t PutText(unsigned char * pOut, std::u16string_view text) noexcept
    {
        return NarrowPlain<Care>(pOut, text) ? text.size() : NarrowUnlessCare<Care>(pOut, text);
    }
    /// nText of the octets are nUnits code units of text, the others are ASCII.
    void Commit(std::size_t nLength, std::size_t nText, std::size_t nUnits) noexcept
    {
        m_octets.Commit(nLength, nLength - nText + nUnits);
    }

private:
    COctetChain & m_octets;
};

/// Writes a text as octets, if there is a chain for them and the text can be encoded, or else as code units.
inline void PutText(CTextStream & stream, COctetChain * pOctets, std::u16string_view text)
{
    if (pOctets != nullptr && 3 * text.size() <= COctetChain::kMostRoom)
    {
        std::size_t const nOctets = COctetOut::PutText<CZero>(pOctets->Room(3 * text.size()), text);
        if (nOctets != kNoText)
            return pOctets->Commit(nOctets, text.size());
    }
    stream.Write(text.data(), text.size());
}

} // namespace QzXmlLib16
