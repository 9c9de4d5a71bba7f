#pragma once

#include "qzxmllib/QzXmlLib16.h"

#include <string>
#include <string_view>

/// Text between the console, which takes UTF-8, and the library.
inline std::u16string Widen(std::string_view text)
{
    return QzXmlLib16::DecodeUtf8(reinterpret_cast<unsigned char const *>(text.data()), text.size());
}

inline std::string Narrow(std::u16string const & strText)
{
    QzXmlLib16::CBinaryData const octets = QzXmlLib16::EncodeUtf8(strText.c_str());
    return std::string(reinterpret_cast<char const *>(octets.GetData()), octets.GetLength());
}
