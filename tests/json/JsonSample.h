#pragma once

#include "qzxmllib/json/JsonContext.h"
#include "tests/support/TableClass.h"

#include <string_view>

/// An order of a few lines: an attribute, elements of several kinds and a collection whose items have an attribute and
/// text.
namespace JsonSample
{

/// ASCII text with double quotes in place of single ones.
inline std::u16string Json(std::string_view text)
{
    std::u16string strJson(text.begin(), text.end());
    for (char16_t & c : strJson)
        if (c == u'\'')
            c = u'"';
    return strJson;
}

/// Indexes of properties.
constexpr int kId = 0, kText = 1, kWeight = 2, kPaid = 3, kLines = 4, kEmpty = 5;

struct CSchemas
{
    CSchemas()
    {
        using namespace QzXmlLib16;
        auto const kNone = CWhitespaceUtils::WhitespaceRule_None;
        CPrimitiveRestrictions const noFacets;
        line.Attribute<QzXmlLib16Data::CAttributeInfoPrimitive>(u"k", true, ItemType_string, u"", kNone, noFacets, u"");
        line.TextProperty();
        root.Attribute<QzXmlLib16Data::CAttributeInfoPrimitive>(u"id", true, ItemType_i4, u"", kNone, noFacets, u"");
        using Element = QzXmlLib16Data::CElementInfoSeqPrimOpt;
        for (auto const & [pszName, eType] :
            {std::pair(u"text", ItemType_string), {u"weight", ItemType_r8}, {u"paid", ItemType_boolean}})
            root.Element<Element>(pszName, false, eType, u"", kNone, noFacets, u"");
        root.Element<QzXmlLib16Data::CElementInfoSeqClsCol>(u"line", QzXmlLib16Data::XmlElementType_Element);
        root.Element<Element>(u"empty", false, ItemType_string, u"", kNone, noFacets, u"");
        root.OnInit(
            [this](CTableClass & object) { object[kLines].SetXmlCollection(new CTableCol(line, u"line", 0, -1)); });
    }

    CTableSchema line{QzXmlLib16Data::CParentElementInfo(QzXmlLib16Data::XmlElementGroupType_Sequence,
        QzXmlLib16Data::XmlElementType_Element, u"line", u"", true, false, 1, QzXmlLib16::ItemType_string, u"", false)};
    CTableSchema root;
};

inline QzXmlLib16::CSmartPtr<CTableClass> New()
{
    static CSchemas s_schemas;
    return QzXmlLib16::CSmartPtr<CTableClass>(new CTableClass(s_schemas.root));
}

/// All elements are set. A plain object has no attribute and no lines; otherwise the first line has attribute and text,
/// the second nothing.
inline QzXmlLib16::CSmartPtr<CTableClass> Make(std::u16string const & strText, double dWeight, bool bPlain = false)
{
    QzXmlLib16::CSmartPtr<CTableClass> spObject = New();
    CTableClass & object = *spObject;
    object[kText].SetString(strText);
    object[kWeight].SetR8(dWeight);
    object[kPaid].SetBoolean(true);
    object[kEmpty].SetString(u"");
    if (bPlain)
        return spObject;
    object[kId].SetI4(-7);
    QzXmlLib16::CSmartPtr<QzXmlLib16::CXmlCollectionBase> const spLines = object[kLines].GetXmlCollection();
    CTableClass & line = *static_cast<CTableCol *>(spLines.Get())->Add();
    line[0].SetString(u"x<y");
    line[1].SetString(u"13.");
    (*static_cast<CTableCol *>(spLines.Get())->Add())[1].SetString(u"");
    return spObject;
}

} // namespace JsonSample
