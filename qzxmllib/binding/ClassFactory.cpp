#include "qzxmllib/binding/ClassFactory.h"

#include "qzxmllib/document/NamespacesInternal.h"
#include "qzxmllib/document/XmlDocument.h"

namespace QzXmlLib16
{

namespace
{

std::u16string const & TypeName(CXmlElement * pElement)
{
    return pElement->GetAttribute(u"type", kXsiNamespace);
}

} // namespace

CClassfactoryBase::CClassfactoryBase() = default;
CClassfactoryBase::CClassfactoryBase(CClassfactoryBase const &) = default;
CClassfactoryBase::~CClassfactoryBase() = default;

CClassfactoryBase & CClassfactoryBase::operator=(CClassfactoryBase const &)
{
    return *this;
}

std::u16string CClassfactoryBase::GetElementType(CXmlElement * pElement)
{
    std::u16string const & strType = TypeName(pElement);
    std::size_t const nColon = strType.find(u':');
    return nColon == std::u16string::npos ? strType : strType.substr(nColon + 1);
}

std::u16string CClassfactoryBase::GetElementTypeNamespaceUri(CXmlElement * pElement)
{
    std::u16string const & strType = TypeName(pElement);
    std::size_t const nColon = strType.find(u':');
    std::u16string strUri;
    if (nColon != std::u16string::npos)
        strUri = pElement->GetDocument()->LookupNamespaceFromAlias(strType.substr(0, nColon).c_str());
    return strUri.empty() ? pElement->GetNamespaceURI() : strUri;
}

} // namespace QzXmlLib16
