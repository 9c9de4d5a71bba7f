#pragma once

#include "qzxmllib/support/Export.h"

namespace QzXmlLib16
{

/// Options of the JSON form. Held by CSerializationContext.
class QZXMLLIB_API CJsonContext
{
public:
    CJsonContext() = default;
    CJsonContext(CJsonContext const &) = default;
    CJsonContext & operator=(CJsonContext const &) = default;
    virtual ~CJsonContext() = default;
};

} // namespace QzXmlLib16
