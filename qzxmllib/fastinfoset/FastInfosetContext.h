#pragma once

#include "qzxmllib/support/Export.h"

namespace QzXmlLib16
{

/// Options of the binary form. Held by CSerializationContext.
class QZXMLLIB_API CFastInfosetContext
{
public:
    CFastInfosetContext() = default;
    CFastInfosetContext(CFastInfosetContext const &) = default;
    CFastInfosetContext & operator=(CFastInfosetContext const &) = default;
    virtual ~CFastInfosetContext() = default;
};

} // namespace QzXmlLib16
