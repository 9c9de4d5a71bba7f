#pragma once

#include "examples/gpx/Kinds.h"

namespace Gpx
{

/// What device makers and others add, in namespaces of their own.
class CExtensions : public Generated::CClass<CExtensions>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 1;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    QzXmlLib16::CSmartPtr<QzXmlLib16::CElementCol> m_spContent{
        new QzXmlLib16::CElementCol(u"", u"##any", kNamespace, 0, -1)};
};

} // namespace Gpx
