#pragma once

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/binding/XmlObjectBase.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/values/ItemType.h"
#include "tests/support/TestText.h"

#include <initializer_list>
#include <string>

/// The forms of an object, as bits.
enum Forms
{
    kFormXml = 1,
    kFormFastInfoset = 2,
    kFormSuggestedValues = 4,
    kFormJson = 8,     ///< attributes marked, no namespaces
    kFormFullJson = 16 ///< also prefixes and xsi:type
};
constexpr int kNoJson = kFormXml | kFormFastInfoset | kFormSuggestedValues;
constexpr int kAllForms = kNoJson | kFormJson | kFormFullJson;

/// Writes the object in each of the forms, reads it into what makeCopy gives, and expects its XML text to be the same.
template <class MakeCopy>
void ExpectSameInForms(
    QzXmlLib16::CXmlObjectBase & object, MakeCopy makeCopy, QzXmlLib16::CSerializationContext const & base, int nForms)
{
    using namespace QzXmlLib16;
    std::string const strExpected = Utf8(object.ToXml(false, false, EOLType_LF, base));
    for (int nForm : {kFormXml, kFormFastInfoset, kFormSuggestedValues, kFormJson, kFormFullJson})
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
        ctx.GetJsonContext().SetStrict(true);
        ctx.GetJsonContext().SetSupportRoundtrip(
            nForm == kFormFullJson ? JsonRoundTrip_Full : JsonRoundTrip_Attributes);
        auto const spCopy = makeCopy();
        try
        {
            if (nForm == kFormXml)
                spCopy->FromXmlStream(object.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
            else if (nForm == kFormFastInfoset || nForm == kFormSuggestedValues)
                spCopy->FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, ctx), ctx);
            else
                spCopy->FromJsonStream(object.ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
            EXPECT_EQ(Utf8(spCopy->ToXml(false, false, EOLType_LF, base)), strExpected) << "form " << nForm;
        }
        catch (CQzException const & e)
        {
            ADD_FAILURE() << "form " << nForm << ": " << Utf8(e.GetFullMessage()) << "\n" << strExpected;
        }
    }
}
