#include "qzxmllib/QzXmlLib16.h"

#include <cstddef>
#include <cstdint>

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
        // Rounding a decimal to the limit of places may leave zeros at its end, which reading takes away.
        bool const bSame = eType == ItemType_decimal
                               ? CDecimal(strAgain) == CDecimal(strPrinted) && print(strAgain) == strAgain
                               : strAgain == strPrinted;
        if (!bSame)
            __builtin_trap();
    }
    catch (CQzException const &)
    {
        // Some values have texts that are refused, see docs/losses.md.
    }
    return 0;
}
