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

} // namespace QzXmlLib16
