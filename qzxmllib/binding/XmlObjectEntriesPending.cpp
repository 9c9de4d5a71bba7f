#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

namespace
{

[[noreturn]] void ThrowNotAvailable(char16_t const * pszForm)
{
    throw CQzException(FormatString(u"%s is not available.", pszForm));
}

} // namespace

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl, CSerializationContext const &, CompressionType) const
{
    ThrowNotAvailable(u"Fast Infoset output");
}

void CXmlObjectBase::ToFastInfosetFile(
    char16_t const *, FInfoDecl, CSerializationContext const &, CompressionType) const
{
    ThrowNotAvailable(u"Fast Infoset output");
}

void CXmlObjectBase::FromXmlElement(CElement const *, CSerializationContext const &)
{
    ThrowNotAvailable(u"Open content");
}

} // namespace QzXmlLib16
