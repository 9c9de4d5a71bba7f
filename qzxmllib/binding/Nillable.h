#pragma once

#include "qzxmllib/support/Export.h"

namespace QzXmlLib16
{

/// A generated class whose element can be nil (xsi:nil) also derives from this and keeps the mark itself.
class QZXMLLIB_API INillable
{
public:
    /// True for an object that is written and was read as nil.
    virtual bool IsNil() = 0;
    /// Called by reading with what xsi:nil says.
    virtual void SetNil(bool bNil) = 0;

protected:
    ~INillable() = default;
};

} // namespace QzXmlLib16
