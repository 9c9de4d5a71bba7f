#include "qzxmllib/document/BinaryStream.h"

#include <utility>

namespace QzXmlLib16
{

CBinaryStream::CBinaryStream() : CBinaryStream(u"CBinaryStream") {}

CBinaryStream::CBinaryStream(CBinaryData const & data) : CBinaryStream(u"CBinaryStream", data) {}

CBinaryStream::CBinaryStream(char16_t const * pszInstanceName) : CInstanceMonitor(pszInstanceName) {}

CBinaryStream::CBinaryStream(char16_t const * pszInstanceName, CBinaryData const & data)
    : CInstanceMonitor(pszInstanceName), m_data(data)
{
}

CBinaryStream::~CBinaryStream() = default;

CBinaryData CBinaryStream::TakeData()
{
    return std::exchange(m_data, CBinaryData());
}

} // namespace QzXmlLib16
