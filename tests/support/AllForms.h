#pragma once

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/values/ItemType.h"
#include "tests/support/TableClass.h"

/// The forms of an object, as bits.
enum Forms
{
    kFormXml = 1,
    kFormFastInfoset = 2,
    kFormSuggestedValues = 4,
    kFormJson = 8,      ///< attributes marked, no namespaces
    kFormFullJson = 16, ///< also prefixes and xsi:type
    kFormStrict = 32    ///< Fast Infoset for all decoders, with suggested values
};
constexpr int kNoJson = kFormXml | kFormFastInfoset | kFormSuggestedValues | kFormStrict;
constexpr int kAllForms = kNoJson | kFormJson | kFormFullJson;

/// Writes the object in each of the forms, reads it into another of its tables, and expects its XML text to be the
/// same.
inline void ExpectSameInForms(CTableClass & object, QzXmlLib16::CSerializationContext const & base, int nForms)
{
    using namespace QzXmlLib16;
    std::string const strExpected = XmlOf(object, base);
    for (int nForm : {kFormXml, kFormFastInfoset, kFormSuggestedValues, kFormStrict, kFormJson, kFormFullJson})
    {
        if ((nForms & nForm) == 0)
            continue;
        CSerializationContext ctx = base;
        if (nForm == kFormSuggestedValues)
        {
            ctx.GetFIContext().SetSuggestedValues();
            // The alphabet of dates has neither the point of a fraction nor the plus sign of an offset.
            ctx.GetFIContext().SetEncoding(ItemType_datetime, {CFastInfosetContext::ECS_DefaultEncoding, 0});
        }
        if (nForm == kFormStrict)
        {
            ctx.GetFIContext().SetSuggestedValues();
            ctx.GetFIContext().SetStrict(true);
        }
        ctx.GetJsonContext().SetStrict(true);
        ctx.GetJsonContext().SetSupportRoundtrip(
            nForm == kFormFullJson ? JsonRoundTrip_Full : JsonRoundTrip_Attributes);
        CSmartPtr<CTableClass> const spCopy(new CTableClass(object.m_schema));
        try
        {
            if (nForm == kFormXml)
                spCopy->FromXmlStream(object.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
            else if (nForm == kFormFastInfoset || nForm == kFormSuggestedValues || nForm == kFormStrict)
                spCopy->FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, ctx), ctx);
            else
                spCopy->FromJsonStream(object.ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
            EXPECT_EQ(XmlOf(*spCopy, base), strExpected) << "form " << nForm;
        }
        catch (CQzException const & e)
        {
            ADD_FAILURE() << "form " << nForm << ": " << Utf8(e.GetFullMessage()) << "\n" << strExpected;
        }
    }
}

/// What reading a document into a class of the tables and writing it again gives: the text, which then passes through
/// the forms too, or the step that failed and its whole message.
inline std::string RoundTrip(CTableSchema & schema, char const * pszDocument,
    QzXmlLib16::CSerializationContext const & ctx = QzXmlLib16::CSerializationContext(), int nForms = 0)
{
    QzXmlLib16::CSmartPtr<CTableClass> const spObject(new CTableClass(schema));
    std::string strStep = "read: ";
    try
    {
        spObject->FromXml(pszDocument, ctx);
        strStep = "write: ";
        ExpectSameInForms(*spObject, ctx, nForms);
        return XmlOf(*spObject, ctx);
    }
    catch (QzXmlLib16::CQzException const & e)
    {
        return strStep + Utf8(e.GetFullMessage());
    }
}

// Failures that it gives.
#define QZ_LEFT_OVER(element)                                                                                          \
    "read: Failed read all the elements held within the element [r]. The unexpected element [" element                 \
    "] remains un processed\nPath: /r"
#define QZ_PROCESS "read: Failed to process the element.\nPath: /r\n"
#define QZ_REQUIRED(name) "read: Failed to find the required child element [" name "].\nPath: /r"
#define QZ_UNEXPECTED(path) "read: Unexpected Attribute found.\nPath: /r/" path
