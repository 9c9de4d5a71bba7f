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

std::u16string CXmlObjectBase::ToJson(bool, EOLType, CSerializationContext const &) const
{
    ThrowNotAvailable(u"JSON output");
}

CBinaryData CXmlObjectBase::ToJsonStream(
    bool, XmlEncoding, EOLType, CSerializationContext const &, CompressionType) const
{
    ThrowNotAvailable(u"JSON output");
}

void CXmlObjectBase::ToJsonFile(
    char16_t const *, bool, XmlEncoding, EOLType, CSerializationContext const &, CompressionType) const
{
    ThrowNotAvailable(u"JSON output");
}

void CXmlObjectBase::FromJsonFile(char16_t const *, CSerializationContext const &)
{
    ThrowNotAvailable(u"JSON input");
}

void CXmlObjectBase::FromJson(char16_t const *, CSerializationContext const &)
{
    ThrowNotAvailable(u"JSON input");
}

void CXmlObjectBase::FromJson(char const *, CSerializationContext const &)
{
    ThrowNotAvailable(u"JSON input");
}

void CXmlObjectBase::FromJsonStream(CBinaryData const &, CSerializationContext const &)
{
    ThrowNotAvailable(u"JSON input");
}

void CXmlObjectBase::FromJsonStream(unsigned char * const, unsigned long, CSerializationContext const &)
{
    ThrowNotAvailable(u"JSON input");
}

void CXmlObjectBase::FromXmlElement(CElement const *, CSerializationContext const &)
{
    ThrowNotAvailable(u"Open content");
}

} // namespace QzXmlLib16
