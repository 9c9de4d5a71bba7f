#include "qzxmllib/QzXmlLib16.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

/// Whether two texts are the same value of a kind. Rounding a decimal to the limit of places may leave zeros at its
/// end, which reading takes away, and the last digit of a floating point number may change.
static bool AreSame(QzXmlLib16::ItemType eType, std::u16string const & strA, std::u16string const & strB)
{
    using namespace QzXmlLib16;
    if (strA == strB)
        return true;
    if (eType == ItemType_decimal)
        return CDecimal(strA) == CDecimal(strB);
    if (eType != ItemType_r4 && eType != ItemType_r8)
        return false;
    auto const value = [](std::u16string const & str)
    { return CConversions::r8FromString(str, CWhitespaceUtils::WhitespaceRule_None); };
    double const dB = value(strB);
    return std::isinf(value(strA)) || std::fabs(value(strA) - dB) <= 1e-6 * std::fabs(dB);
}

/// The first octet chooses the kind, the others are a text. What a value prints is read as a value that prints the
/// same.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * pOctets, std::size_t nOctets)
{
    using namespace QzXmlLib16;
    if (nOctets < 2)
        return -1;
    auto const eType = static_cast<ItemType>(pOctets[0] % 29);
    std::u16string const strText(pOctets + 1, pOctets + nOctets);
    auto const print = [eType](std::u16string const & strValue)
    {
        QzVariant value;
        value.FromString(strValue, eType, CWhitespaceUtils::WhitespaceRule_Collapse);
        return value.ToString(u"");
    };
    std::u16string strPrinted;
    try
    {
        strPrinted = print(strText);
    }
    catch (CQzException const &)
    {
        return 0;
    }
    try
    {
        std::u16string const strAgain = print(strPrinted);
        if (!AreSame(eType, strAgain, strPrinted))
            __builtin_trap();
    }
    catch (CQzException const &)
    {
        // Some values have texts that are refused, see docs/losses.md.
    }
    return 0;
}
