#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/values/BinaryData.h"

#include <string>

namespace QzXmlLib16
{

/// The built-in encoding algorithms of ITU-T X.891 clause 10, by their index from 1 on: hexadecimal, base64, short,
/// int, long, boolean, float, double, uuid, cdata.
class QZXMLLIB_API CFastInfosetBinaryData : public CBinaryData
{
public:
    using CBinaryData::CBinaryData;
    CFastInfosetBinaryData() = default;
    CFastInfosetBinaryData(CBinaryData const & data) : CBinaryData(data) {}
    CFastInfosetBinaryData(CFastInfosetBinaryData const & other) = default;
    CFastInfosetBinaryData & operator=(CFastInfosetBinaryData const & other) = default;
    CFastInfosetBinaryData & operator=(CBinaryData const & data)
    {
        CBinaryData::operator=(data);
        return *this;
    }
    ~CFastInfosetBinaryData() override;

    /// The text of the octets; several values are joined with blanks. No octets give an empty text for any index.
    /// Throws CQzException if the octets do not make whole values, and for an index other than 1 to 9.
    std::u16string GetAsString(unsigned long nIndex) const;
    /// Replaces the octets by those of the text, which is one value. Nothing is left of the old ones if the text is
    /// refused. Throws what the conversion of the text throws, and CQzException for an index other than 1 to 10.
    void SetAsEncodedString(unsigned long nIndex, char16_t const * pText);
};

} // namespace QzXmlLib16
