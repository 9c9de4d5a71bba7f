#pragma once

#include "examples/gpx/Extensions.h"

namespace Gpx
{

/// A link to a page, with its text and MIME type.
class CLink : public Generated::CClass<CLink>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 3;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::u16string m_strHref;
    Text m_text;
    Text m_type;
};

class CLinkCol : public Generated::CItems<CLink>
{
public:
    CLinkCol() : CItems(u"link", kNamespace) {}
};

} // namespace Gpx
