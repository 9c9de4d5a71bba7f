#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

void CXmlObjectBase::FromXmlElement(CElement const *, CSerializationContext const &)
{
    throw CQzException(u"Open content is not available.");
}

} // namespace QzXmlLib16
