#pragma once

#include "tests/support/TableClass.h"

#include <limits>

/// An order of a few lines: attributes, numbers, texts of all kinds and a collection whose items have attributes and
/// text.
namespace JsonSample
{

inline CTableSchema & LineSchema()
{
    using namespace QzXmlLib16;
    using namespace QzXmlLib16Data;
    static CTableSchema s_schema(CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, u"line", u"",
        true, false, 1, ItemType_string, u"", false));
    static bool const s_bBuilt = []
    {
        s_schema.Attribute<CAttributeInfoPrimitive>(
            u"k", true, ItemType_string, u"", CWhitespaceUtils::WhitespaceRule_None, CPrimitiveRestrictions(), u"");
        s_schema.TextProperty();
        return true;
    }();
    static_cast<void>(s_bBuilt);
    return s_schema;
}

enum Property
{
    Property_Id,
    Property_Text,
    Property_Weight,
    Property_Paid,
    Property_Lines,
    Property_Empty
};

inline CTableSchema & Schema()
{
    using namespace QzXmlLib16;
    using namespace QzXmlLib16Data;
    static CTableSchema s_schema;
    static bool const s_bBuilt = []
    {
        auto const kNone = CWhitespaceUtils::WhitespaceRule_None;
        CPrimitiveRestrictions const noFacets;
        s_schema.Attribute<CAttributeInfoPrimitive>(u"id", true, ItemType_i4, u"", kNone, noFacets, u"");
        s_schema.Element<CElementInfoSeqPrimOpt>(u"text", false, ItemType_string, u"", kNone, noFacets, u"");
        s_schema.Element<CElementInfoSeqPrimOpt>(u"weight", false, ItemType_r8, u"", kNone, noFacets, u"");
        s_schema.Element<CElementInfoSeqPrimOpt>(u"paid", false, ItemType_boolean, u"", kNone, noFacets, u"");
        s_schema.Element<CElementInfoSeqClsCol>(u"line", XmlElementType_Element);
        s_schema.Element<CElementInfoSeqPrimOpt>(u"empty", false, ItemType_string, u"", kNone, noFacets, u"");
        s_schema.OnInit([](CTableClass & object)
            { object[Property_Lines].SetXmlCollection(new CTableCol(LineSchema(), u"line", 0, -1)); });
        return true;
    }();
    static_cast<void>(s_bBuilt);
    return s_schema;
}

/// All properties are set. The lines have the attribute k, if it is given, and the text.
inline QzXmlLib16::CSmartPtr<CTableClass> Make(std::u16string const & strText, double dWeight,
    std::vector<std::pair<char16_t const *, std::u16string>> const & lines)
{
    QzXmlLib16::CSmartPtr<CTableClass> spObject(new CTableClass(Schema()));
    CTableClass & object = *spObject;
    object[Property_Id].SetI4(-7);
    object[Property_Text].SetString(strText.c_str());
    object[Property_Weight].SetR8(dWeight);
    object[Property_Paid].SetBoolean(true);
    object[Property_Empty].SetString(u"");
    QzXmlLib16::CSmartPtr<QzXmlLib16::CXmlCollectionBase> const spLines = object[Property_Lines].GetXmlCollection();
    auto * const pLines = static_cast<CTableCol *>(spLines.Get());
    for (auto const & [pszK, strLine] : lines)
    {
        CTableClass & line = *pLines->Add();
        if (pszK != nullptr)
            line[0].SetString(pszK);
        line[1].SetString(strLine.c_str());
    }
    return spObject;
}

} // namespace JsonSample
