#include "qzxmllib/binding/Element.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/support/ThreadMemory.h"
#include "tests/json/JsonSample.h"

#include <atomic>
#include <thread>

using namespace QzXmlLib16;

/// Eight threads write and read objects of shared tables under one shared context, in all forms, and drop objects and
/// documents that others have made.
TEST(ThreadsTest, SharedTablesAndOptions)
{
    CSerializationContext ctx;
    ctx.GetJsonContext().SetStrict(true);
    ctx.GetFIContext();
    ctx.GetNamespaceAliases().Add(u"p", u"urn:p");
    CSmartPtr<CTableClass> const spSample = JsonSample::Make(u"text", 0.5);
    std::string const strExpected = XmlOf(*spSample);
    CBinaryData const xml = spSample->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx);
    CBinaryData const binary = spSample->ToFastInfosetStream(FInfoDecl_None, ctx);
    CBinaryData const json = spSample->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx);
    std::atomic<CElement *> pShared{nullptr};
    std::atomic<int> nRight{0};
    auto const work = [&]
    {
        for (int n = 0; n < 100; ++n)
        {
            CSmartPtr<CTableClass> const spObject = JsonSample::New();
            spObject->FromXmlStream(xml, ctx);
            nRight += XmlOf(*spObject) == strExpected;
            spObject->FromXmlStream(binary, ctx);
            nRight += spObject->ToFastInfosetStream(FInfoDecl_None, ctx) == binary;
            spObject->FromJsonStream(json, ctx);
            nRight += spObject->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx) == json;
            CSmartPtr<CElement> const spElement(new CElement(u"e"));
            spElement->FromXml(u"<r xmlns='urn:r' a='1'><b>x</b><b>y</b></r>");
            nRight += spElement->Clone()->GetChildElements()->GetCount() == 2;
            spElement->AddRef();
            if (CElement * const pOther = pShared.exchange(spElement))
                pOther->Release();
            if (n % 16 == 0)
                TrimMemory();
        }
    };
    std::vector<std::thread> threads;
    for (int n = 0; n < 8; ++n)
        threads.emplace_back(work);
    for (std::thread & thread : threads)
        thread.join();
    pShared.load()->Release();
    EXPECT_EQ(nRight, 8 * 100 * 4);
}
