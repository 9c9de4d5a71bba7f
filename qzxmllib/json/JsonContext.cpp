#include "qzxmllib/json/JsonContext.h"

namespace QzXmlLib16
{

CJsonContext::CJsonContext() = default;
CJsonContext::CJsonContext(CJsonContext const & other) = default;
CJsonContext & CJsonContext::operator=(CJsonContext const & other) = default;
CJsonContext::~CJsonContext() = default;

void CJsonContext::SetRootElementName(char16_t const * name)
{
    if (name != nullptr)
        m_strRootElementName = name;
    else
        m_strRootElementName.clear();
}

} // namespace QzXmlLib16
