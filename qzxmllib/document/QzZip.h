#pragma once

#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <cstdint>

namespace QzXmlLib16
{

/// Compresses finished output and recognises compressed input, whole buffers in memory. Operations may run on any
/// thread.
class QZXMLLIB_API CQzZip : public CInstanceMonitor
{
public:
    CQzZip();
    ~CQzZip() override;

    /// Replaces the octets by their compressed form. An empty value and any other type are left alone. Throws
    /// CQzException "Failed to compress data. [Error Code: %d]" when the compressed form is longer than the octets;
    /// the value keeps its octets then.
    static void Compress(CBinaryData & data, CompressionType eType);
    /// The same on an array from array new, which is freed on success. Unchanged on failure.
    static void Compress(unsigned char ** ppData, unsigned long * pnLength, CompressionType eType);
    /// Replaces an array from array new by its plain form if it holds a complete gzip or zlib stream, and leaves
    /// everything as it was if not. Further gzip members are part of the stream, other octets behind it are dropped.
    /// The plain form of a stream of nothing is a null pointer.
    static void Decompress(unsigned char ** ppData, unsigned long * pnLength);
    /// The same for octets that stay the caller's. Gives whether they are compressed; then ppPlain receives a new array
    /// or null. More than nLimit octets of plain form throw CQzException "The decompressed data exceed the limit of %d
    /// bytes."; a limit of 0 means none but that of 4 GiB, beyond which octets count as not compressed.
    static bool Decompress(unsigned char const * pData, unsigned long nLength, std::uint64_t nLimit,
        unsigned char ** ppPlain, unsigned long * pnPlainLength);
};

} // namespace QzXmlLib16
