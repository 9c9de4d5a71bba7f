#pragma once

#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/values/BinaryData.h"

namespace QzXmlLib16
{

/// What AsyncToXmlFile was told last.
bool IsAsyncToXmlFile() noexcept;

/// Throws CQzException for CompressionType_ZLib, which files are not written with.
void RefuseZLib(CompressionType eCompression);

/// The octets, compressed if that is asked for.
CBinaryData Compressed(CBinaryData data, CompressionType eCompression);

} // namespace QzXmlLib16
