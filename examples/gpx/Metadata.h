#pragma once

#include "examples/gpx/Link.h"

namespace Gpx
{

/// An address in two parts, against address collectors.
class CEmail : public Generated::CClass<CEmail>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 2;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::u16string m_strId;
    std::u16string m_strDomain;
};

/// A person or an organisation.
class CPerson : public Generated::CClass<CPerson>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 3;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Text m_name;
    QzXmlLib16::CSmartPtr<CEmail> m_spEmail;
    QzXmlLib16::CSmartPtr<CLink> m_spLink;
};

/// Who holds the rights, and under which licence the file may be used.
class CCopyright : public Generated::CClass<CCopyright>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 3;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::u16string m_strAuthor;
    std::optional<Year> m_year;
    Text m_license;
};

/// The corners of the area that a file covers, in degrees.
class CBounds : public Generated::CClass<CBounds>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 4;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Decimal m_minLat = 0;
    Decimal m_minLon = 0;
    Decimal m_maxLat = 0;
    Decimal m_maxLon = 0;
};

/// What a file says about itself.
class CMetadata : public Generated::CClass<CMetadata>
{
public:
    static constexpr char16_t const * kNamespace = Gpx::kNamespace;
    static constexpr int kPropertyCount = 9;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Text m_name;
    Text m_desc;
    QzXmlLib16::CSmartPtr<CPerson> m_spAuthor;
    QzXmlLib16::CSmartPtr<CCopyright> m_spCopyright;
    QzXmlLib16::CSmartPtr<CLinkCol> m_spLinks{new CLinkCol};
    std::optional<Time> m_time;
    Text m_keywords;
    QzXmlLib16::CSmartPtr<CBounds> m_spBounds;
    QzXmlLib16::CSmartPtr<CExtensions> m_spExtensions;
};

} // namespace Gpx
