#pragma once

#include "examples/support/GeneratedClass.h"

#include <string>

/// The purchase orders of orders.xsd.
namespace Orders
{

constexpr char16_t kNamespace[] = u"urn:example:orders:v1";
constexpr Generated::CEntries kEntries{kNamespace};

using Text = std::u16string;
using OptText = std::optional<Text>;
constexpr QzXmlLib16::ItemType kText = QzXmlLib16::ItemType_string;

using Decimal = QzXmlLib16::CDecimal;
constexpr QzXmlLib16::ItemType kDecimal = QzXmlLib16::ItemType_decimal;

using Date = QzXmlLib16::CDateTime;
constexpr QzXmlLib16::ItemType kDate = QzXmlLib16::ItemType_date;
constexpr QzXmlLib16::ItemType kDateTime = QzXmlLib16::ItemType_datetime;

enum class Status
{
    Open,
    Packed,
    Shipped,
    Closed
};

/// Where an order goes.
class CAddress : public Generated::CClass<CAddress>
{
public:
    static constexpr char16_t const * kNamespace = Orders::kNamespace;
    static constexpr int kPropertyCount = 6;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Text m_strCountry;
    Text m_strName;
    Text m_strStreet;
    Text m_strCity;
    OptText m_state;
    Text m_strZip;
};

/// Who orders.
class CCustomer : public Generated::CClass<CCustomer>
{
public:
    static constexpr char16_t const * kNamespace = Orders::kNamespace;
    static constexpr int kPropertyCount = 4;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::uint32_t m_dwNumber = 0;
    Text m_strName;
    Text m_strEmail;
    OptText m_phone;
};

/// One line of an order.
class CItem : public Generated::CClass<CItem>
{
public:
    static constexpr char16_t const * kNamespace = Orders::kNamespace;
    static constexpr int kPropertyCount = 10;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::int32_t m_nLine = 0;
    Text m_strPartNumber;
    Text m_strProductName;
    std::int32_t m_nQuantity = 0;
    Decimal m_unitPrice;
    std::optional<Decimal> m_discount;
    double m_weight = 0;
    bool m_bInStock = false;
    std::optional<Date> m_shipDate;
    OptText m_note;
};

class CItemCol : public Generated::CItems<CItem>
{
public:
    CItemCol() : CItems(u"item", kNamespace) {}
};

/// All lines of an order.
class CItems : public Generated::CClass<CItems>
{
public:
    static constexpr char16_t const * kNamespace = Orders::kNamespace;
    static constexpr int kPropertyCount = 1;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    QzXmlLib16::CSmartPtr<CItemCol> m_spItems{new CItemCol};
};

class COrder : public Generated::CClass<COrder>
{
public:
    static constexpr char16_t const * kNamespace = Orders::kNamespace;
    static constexpr int kPropertyCount = 12;
    static Generated::CTables MakeTables();

    using CClass::CClass;
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    std::uint32_t m_dwId = 0;
    Status m_eStatus = Status::Open;
    std::optional<std::int32_t> m_priority;
    Date m_orderDate;
    Date m_created;
    QzXmlLib16::CSmartPtr<CCustomer> m_spCustomer{new CCustomer(u"customer")};
    QzXmlLib16::CSmartPtr<CAddress> m_spShipTo{new CAddress(u"shipTo")};
    QzXmlLib16::CSmartPtr<CAddress> m_spBillTo;
    QzXmlLib16::CSmartPtr<CItems> m_spItems{new CItems(u"items")};
    Decimal m_total;
    bool m_bPaid = false;
    OptText m_comment;
};

class COrderCol : public Generated::CItems<COrder>
{
public:
    COrderCol() : CItems(u"order", kNamespace) {}
};

/// The root of a document.
class COrders : public Generated::CClass<COrders>
{
public:
    static constexpr char16_t const * kNamespace = Orders::kNamespace;
    static constexpr int kPropertyCount = 2;
    static Generated::CTables MakeTables();

    explicit COrders(char16_t const * pszElementName = u"orders") : CClass(pszElementName) {}
    void Init() override;
    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override;

    Text m_strVersion;
    QzXmlLib16::CSmartPtr<COrderCol> m_spOrders{new COrderCol};
};

} // namespace Orders
