#pragma once

#include "qzxmllib/support/MemoryLeakHelp.h"
#include "qzxmllib/values/BinaryData.h"

#include <cstddef>

namespace QzXmlLib16
{

/// Collects the octets of one output.
class QZXMLLIB_API CBinaryStream : public CInstanceMonitor
{
public:
    CBinaryStream();
    explicit CBinaryStream(CBinaryData const & data);
    CBinaryStream(CBinaryStream const &) = delete;
    CBinaryStream & operator=(CBinaryStream const &) = delete;
    ~CBinaryStream() override;

    void Append(unsigned char by) { m_data.Append(by); }
    void Append(CBinaryData const & data) { m_data.Append(data); }
    void Append(unsigned char const * pOctets, std::size_t nOctets) { m_data.Append(pOctets, nOctets); }
    /// Shares the octets with this stream.
    CBinaryData GetData() const { return m_data; }
    /// Hands the octets over; the stream is empty afterwards.
    CBinaryData TakeData();

protected:
    explicit CBinaryStream(char16_t const * pszInstanceName);
    CBinaryStream(char16_t const * pszInstanceName, CBinaryData const & data);

    CBinaryData m_data;
};

} // namespace QzXmlLib16
