#pragma once

#include "qzxmllib/support/Export.h"

#include <string>

namespace QzXmlLib16
{

class CXmlElement;

/// Base of generated factories that pick a class by looking at an element: they read the type that xsi:type names.
class QZXMLLIB_API CClassfactoryBase
{
public:
    CClassfactoryBase();
    CClassfactoryBase(CClassfactoryBase const & other);
    CClassfactoryBase & operator=(CClassfactoryBase const & other);
    virtual ~CClassfactoryBase();

protected:
    /// The local part of the type name, empty for an element without xsi:type. pElement must not be null.
    static std::u16string GetElementType(CXmlElement * pElement);
    /// The namespace of the type: that of its prefix, or the element's own when the prefix is missing or unknown. Of
    /// several declarations of a prefix in the document the last holds, wherever it stands.
    static std::u16string GetElementTypeNamespaceUri(CXmlElement * pElement);
};

} // namespace QzXmlLib16
