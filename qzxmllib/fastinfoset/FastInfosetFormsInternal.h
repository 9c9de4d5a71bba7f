#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace QzXmlLib16
{

/// One form of a number in a Fast Infoset document: a pattern of bits in an octet, whose other bits belong to something
/// else, and the octets that follow, most significant first. The number less the base stands in the data bits, which
/// are the lowest ones of the octet, and in the octets that follow.
struct FIForm
{
    std::uint32_t dwMask;
    std::uint32_t dwLead;
    std::uint32_t dwData;
    std::uint32_t nOctets;
    std::uint32_t dwBase;

    /// How many numbers the form holds.
    constexpr std::uint64_t Count() const { return (std::uint64_t(dwData) + 1) << (8 * nOctets); }
};

/// The forms of one kind of number, shortest first.
struct FIForms
{
    FIForm const * pRows;
    std::size_t nRows;

    template <std::size_t N>
    constexpr FIForms(FIForm const (&rows)[N]) : pRows(rows), nRows(N)
    {
    }
    constexpr FIForm const * begin() const { return pRows; }
    constexpr FIForm const * end() const { return pRows + nRows; }
};

/// Whether each form goes on where the one before it ends.
constexpr bool Chains(FIForms const & forms)
{
    std::uint64_t nNext = 1;
    for (FIForm const & form : forms)
    {
        if (form.dwBase != nNext || (form.dwLead & ~form.dwMask) != 0 || (form.dwData & form.dwMask) != 0)
            return false;
        nNext += form.Count();
    }
    return true;
}

// ITU-T X.891, annex C: lengths of octet strings.
inline constexpr FIForm kLengthOnBit2Rows[] = {
    // mask, lead, data, octets that follow, base
    {0x40, 0x00, 0x3F, 0, 1},
    {0x7F, 0x40, 0x00, 1, 65},
    {0x7F, 0x60, 0x00, 4, 321},
};
inline constexpr FIForm kLengthOnBit5Rows[] = {
    {0x08, 0x00, 0x07, 0, 1},
    {0x0F, 0x08, 0x00, 1, 9},
    {0x0F, 0x0C, 0x00, 4, 265},
};
inline constexpr FIForm kLengthOnBit7Rows[] = {
    {0x02, 0x00, 0x01, 0, 1},
    {0x03, 0x02, 0x00, 1, 3},
    {0x03, 0x03, 0x00, 4, 259},
};

// The same annex: indexes of table entries. The last form of each leaves bits open that a writer sets to 0.
inline constexpr FIForm kIntegerOnBit2Rows[] = {
    {0x40, 0x00, 0x3F, 0, 1},
    {0x60, 0x40, 0x1F, 1, 65},
    {0x60, 0x60, 0x0F, 2, 8257},
};
inline constexpr FIForm kIntegerOnBit3Rows[] = {
    {0x20, 0x00, 0x1F, 0, 1},
    {0x38, 0x20, 0x07, 1, 33},
    {0x38, 0x28, 0x07, 2, 2081},
    {0x38, 0x30, 0x00, 3, 526369},
};
inline constexpr FIForm kIntegerOnBit4Rows[] = {
    {0x10, 0x00, 0x0F, 0, 1},
    {0x1C, 0x10, 0x03, 1, 17},
    {0x1C, 0x14, 0x03, 2, 1041},
    {0x1C, 0x18, 0x00, 3, 263185},
};

inline constexpr FIForms kLengthOnBit2(kLengthOnBit2Rows);
inline constexpr FIForms kLengthOnBit5(kLengthOnBit5Rows);
inline constexpr FIForms kLengthOnBit7(kLengthOnBit7Rows);
inline constexpr FIForms kIntegerOnBit2(kIntegerOnBit2Rows);
inline constexpr FIForms kIntegerOnBit3(kIntegerOnBit3Rows);
inline constexpr FIForms kIntegerOnBit4(kIntegerOnBit4Rows);

static_assert(Chains(kLengthOnBit2) && Chains(kLengthOnBit5) && Chains(kLengthOnBit7));
static_assert(Chains(kIntegerOnBit2) && Chains(kIntegerOnBit3) && Chains(kIntegerOnBit4));

/// How the characters of a string are encoded.
enum FIStringKind : unsigned
{
    FIStringKind_Utf8 = 0,
    FIStringKind_Utf16 = 1,
    FIStringKind_Alphabet = 2,
    FIStringKind_Algorithm = 3
};

/// An encoded character string: two bits for its kind stand in front of nShift bits, which hold the beginning of the
/// length or of the eight bits of an index. The rest of an index stands in the next octet, and the length behind it.
struct FIStringForm
{
    unsigned nShift;
    FIForms const & lengths;
};

inline constexpr FIStringForm kStringOnBit3 = {4, kLengthOnBit5};
inline constexpr FIStringForm kStringOnBit5 = {2, kLengthOnBit7};

/// A qualified name: an index, or all bits of the literal pattern and behind them one for the prefix and one for the
/// namespace name.
struct FINameForm
{
    unsigned dwLiteral;
    FIForms const & indexes;
};

inline constexpr unsigned kNamePrefix = 0x02;
inline constexpr unsigned kNameNamespace = 0x01;
inline constexpr FINameForm kElementName = {0x3C, kIntegerOnBit3};
inline constexpr FINameForm kAttributeName = {0x78, kIntegerOnBit2};

// Octets with one meaning.
inline constexpr unsigned char kTerminator = 0xF0;
inline constexpr unsigned char kDoubleTerminator = 0xFF;
inline constexpr unsigned char kEmptyValue = 0xFF;

inline constexpr unsigned char kIdentification[] = {0xE0, 0x00, 0x00, 0x01};

/// The XML declarations of X.891 clause 12.3 that may stand in front of the identification, by FInfoDecl less 1.
inline constexpr std::string_view kDeclarations[] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
};

/// Width in bits of the characters of a restricted alphabet, or 0 if its length is none that X.891 allows. The value
/// with all bits set is not a character.
constexpr unsigned AlphabetWidth(std::size_t nCharacters)
{
    if (nCharacters < 2 || nCharacters > 1048576)
        return 0;
    unsigned nWidth = 2;
    while ((std::size_t(1) << nWidth) <= nCharacters)
        ++nWidth;
    return nWidth;
}

} // namespace QzXmlLib16
