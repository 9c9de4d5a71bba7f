#include "bench/Orders.h"

#include <iterator>
#include <string_view>

namespace Orders
{

namespace
{

// In the order of Status.
constexpr char16_t const * kStatuses[] = {u"open", u"packed", u"shipped", u"closed"};

char16_t const * StatusToString(int nValue)
{
    return nValue >= 0 && nValue < static_cast<int>(std::size(kStatuses)) ? kStatuses[nValue] : nullptr;
}

int StatusFromString(char16_t const * pszText)
{
    for (std::size_t n = 0; n < std::size(kStatuses); ++n)
        if (std::u16string_view(kStatuses[n]) == pszText)
            return static_cast<int>(n);
    throw QzXmlLib16::CQzInvalidValueException(QzXmlLib16::FormatString(u"The value [%s] is not a status", pszText));
}

} // namespace

Generated::CTables CAddress::MakeTables()
{
    return {u"AddressType", kNamespace,
        {kEntries.Mnd(u"name", 1, kText), kEntries.Mnd(u"street", 2, kText), kEntries.Mnd(u"city", 3, kText),
            kEntries.Opt(u"state", 4, kText), kEntries.Mnd(u"zip", 5, kText)},
        {kEntries.Attribute(u"country", 0, kText)}};
}

void CAddress::Init()
{
    m_strCountry.clear();
    m_strName.clear();
    m_strStreet.clear();
    m_strCity.clear();
    m_state.reset();
    m_strZip.clear();
}

void CAddress::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_strCountry);
    case 1:
        return Generated::Access<kText>(read, value, m_strName);
    case 2:
        return Generated::Access<kText>(read, value, m_strStreet);
    case 3:
        return Generated::Access<kText>(read, value, m_strCity);
    case 4:
        return Generated::Access<kText>(read, value, m_state);
    case 5:
        return Generated::Access<kText>(read, value, m_strZip);
    }
}

Generated::CTables CCustomer::MakeTables()
{
    return {u"CustomerType", kNamespace,
        {kEntries.Mnd(u"name", 1, kText), kEntries.Mnd(u"email", 2, kText), kEntries.Opt(u"phone", 3, kText)},
        {kEntries.Attribute(u"number", 0, QzXmlLib16::ItemType_ui4)}};
}

void CCustomer::Init()
{
    m_dwNumber = 0;
    m_strName.clear();
    m_strEmail.clear();
    m_phone.reset();
}

void CCustomer::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<QzXmlLib16::ItemType_ui4>(read, value, m_dwNumber);
    case 1:
        return Generated::Access<kText>(read, value, m_strName);
    case 2:
        return Generated::Access<kText>(read, value, m_strEmail);
    case 3:
        return Generated::Access<kText>(read, value, m_phone);
    }
}

Generated::CTables CItem::MakeTables()
{
    return {u"ItemType", kNamespace,
        {kEntries.Mnd(u"productName", 2, kText), kEntries.Mnd(u"quantity", 3, QzXmlLib16::ItemType_i4),
            kEntries.Mnd(u"unitPrice", 4, kDecimal), kEntries.Opt(u"discount", 5, kDecimal),
            kEntries.Mnd(u"weight", 6, QzXmlLib16::ItemType_r8),
            kEntries.Mnd(u"inStock", 7, QzXmlLib16::ItemType_boolean), kEntries.Opt(u"shipDate", 8, kDate),
            kEntries.Opt(u"note", 9, kText)},
        {kEntries.Attribute(u"line", 0, QzXmlLib16::ItemType_i4), kEntries.Attribute(u"partNumber", 1, kText)}};
}

void CItem::Init()
{
    m_nLine = 0;
    m_strPartNumber.clear();
    m_strProductName.clear();
    m_nQuantity = 0;
    m_unitPrice = 0;
    m_discount.reset();
    m_weight = 0;
    m_bInStock = false;
    m_shipDate.reset();
    m_note.reset();
}

void CItem::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<QzXmlLib16::ItemType_i4>(read, value, m_nLine);
    case 1:
        return Generated::Access<kText>(read, value, m_strPartNumber);
    case 2:
        return Generated::Access<kText>(read, value, m_strProductName);
    case 3:
        return Generated::Access<QzXmlLib16::ItemType_i4>(read, value, m_nQuantity);
    case 4:
        return Generated::Access<kDecimal>(read, value, m_unitPrice);
    case 5:
        return Generated::Access<kDecimal>(read, value, m_discount);
    case 6:
        return Generated::Access<QzXmlLib16::ItemType_r8>(read, value, m_weight);
    case 7:
        return Generated::Access<QzXmlLib16::ItemType_boolean>(read, value, m_bInStock);
    case 8:
        return Generated::Access<kDate>(read, value, m_shipDate);
    case 9:
        return Generated::Access<kText>(read, value, m_note);
    }
}

Generated::CTables CItems::MakeTables()
{
    return {u"ItemsType", kNamespace, {kEntries.Col(u"item", 0)}, {}};
}

void CItems::Init()
{
    m_spItems->Clear();
}

void CItems::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::AccessCollection(read, value, m_spItems);
    }
}

Generated::CTables COrder::MakeTables()
{
    return {u"OrderType", kNamespace,
        {kEntries.Mnd(u"orderDate", 3, kDate), kEntries.Mnd(u"created", 4, kDateTime),
            kEntries.ClassMnd<CCustomer>(u"customer", 5), kEntries.ClassMnd<CAddress>(u"shipTo", 6),
            kEntries.ClassOpt<CAddress>(u"billTo", 7), kEntries.ClassMnd<CItems>(u"items", 8),
            kEntries.Mnd(u"total", 9, kDecimal), kEntries.Mnd(u"paid", 10, QzXmlLib16::ItemType_boolean),
            kEntries.Opt(u"comment", 11, kText)},
        {kEntries.Attribute(u"id", 0, QzXmlLib16::ItemType_ui4),
            kEntries.EnumAttribute(u"status", 1, &StatusToString, &StatusFromString),
            kEntries.Attribute(u"priority", 2, QzXmlLib16::ItemType_i4, true)}};
}

void COrder::Init()
{
    m_dwId = 0;
    m_eStatus = Status::Open;
    m_priority.reset();
    m_orderDate = Date();
    m_created = Date();
    m_spCustomer->Init();
    m_spShipTo->Init();
    m_spBillTo = nullptr;
    m_spItems->Init();
    m_total = 0;
    m_bPaid = false;
    m_comment.reset();
}

void COrder::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<QzXmlLib16::ItemType_ui4>(read, value, m_dwId);
    case 1:
        return Generated::AccessEnum(read, value, m_eStatus);
    case 2:
        return Generated::Access<QzXmlLib16::ItemType_i4>(read, value, m_priority);
    case 3:
        return Generated::Access<kDate>(read, value, m_orderDate);
    case 4:
        return Generated::Access<kDateTime>(read, value, m_created);
    case 5:
        return Generated::AccessObject(read, value, m_spCustomer);
    case 6:
        return Generated::AccessObject(read, value, m_spShipTo);
    case 7:
        return Generated::AccessObject(read, value, m_spBillTo);
    case 8:
        return Generated::AccessObject(read, value, m_spItems);
    case 9:
        return Generated::Access<kDecimal>(read, value, m_total);
    case 10:
        return Generated::Access<QzXmlLib16::ItemType_boolean>(read, value, m_bPaid);
    case 11:
        return Generated::Access<kText>(read, value, m_comment);
    }
}

Generated::CTables COrders::MakeTables()
{
    return {u"OrdersType", kNamespace, {kEntries.Col(u"order", 1)}, {kEntries.Attribute(u"version", 0, kText)}};
}

void COrders::Init()
{
    m_strVersion.clear();
    m_spOrders->Clear();
}

void COrders::AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value)
{
    switch (index)
    {
    case 0:
        return Generated::Access<kText>(read, value, m_strVersion);
    case 1:
        return Generated::AccessCollection(read, value, m_spOrders);
    }
}

} // namespace Orders
