#include "qzxmllib/binding/Element.h"
#include "qzxmllib/binding/PlainCol.h"
#include "qzxmllib/document/QzZip.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/support/ThreadMemory.h"
#include "qzxmllib/values/BigInteger.h"
#include "tests/json/JsonSample.h"
#include "tests/support/TestFile.h"

#include <atomic>
#include <cstddef>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <pthread.h>
#include <thread>
#include <utility>

// Every single allocation of an operation fails in turn, in the library and in the libraries that it calls. The
// operation ends in a failure of the family or std::bad_alloc, nothing is leaked, and the same operation is right
// afterwards.

namespace
{

/// The allocations of one thread are counted and failed; those of the others go on.
thread_local bool t_bStaged = false;
std::size_t g_nUntilFailure = 0;
bool g_bFailed = false;
std::atomic<std::ptrdiff_t> g_nLive{0};

bool FailsNow() noexcept
{
    if (!t_bStaged || g_nUntilFailure-- != 0)
        return false;
    t_bStaged = false;
    g_bFailed = true;
    return true;
}

} // namespace

extern "C"
{
    void * __libc_malloc(std::size_t n);
    void * __libc_calloc(std::size_t nItems, std::size_t n);
    void * __libc_realloc(void * p, std::size_t n);
    void __libc_free(void * p);
    void * __libc_memalign(std::size_t nAlignment, std::size_t n);

    void * malloc(std::size_t n)
    {
        void * const p = FailsNow() ? nullptr : __libc_malloc(n);
        g_nLive += p != nullptr;
        return p;
    }
    void * calloc(std::size_t nItems, std::size_t n)
    {
        void * const p = FailsNow() ? nullptr : __libc_calloc(nItems, n);
        g_nLive += p != nullptr;
        return p;
    }
    void * realloc(void * p, std::size_t n)
    {
        void * const pNew = FailsNow() ? nullptr : __libc_realloc(p, n);
        g_nLive += p == nullptr && pNew != nullptr;
        return pNew;
    }
    void free(void * p)
    {
        g_nLive -= p != nullptr;
        __libc_free(p);
    }
    void * memalign(std::size_t nAlignment, std::size_t n)
    {
        void * const p = FailsNow() ? nullptr : __libc_memalign(nAlignment, n);
        g_nLive += p != nullptr;
        return p;
    }
    /// The platform's own function crashes when it gets no memory.
    int pthread_getattr_np(pthread_t thread, pthread_attr_t * pAttributes)
    {
        auto const pfnReal = reinterpret_cast<decltype(&pthread_getattr_np)>(::dlsym(RTLD_NEXT, "pthread_getattr_np"));
        bool const bStaged = std::exchange(t_bStaged, false);
        int const nResult = pfnReal(thread, pAttributes);
        t_bStaged = bStaged;
        return nResult;
    }
    void * aligned_alloc(std::size_t nAlignment, std::size_t n)
    {
        return memalign(nAlignment, n);
    }
}

using namespace QzXmlLib16;

namespace
{

struct Operation
{
    char const * pszName;
    /// Gives something that shows whether all went well.
    std::function<std::string()> run;
};

constexpr char kXml[] =
    "<!DOCTYPE r [<!ENTITY e 'x'>]><r xmlns:p='urn:p' a='1'><p:b p:c='&e;'>text</p:b><d xmlns='urn:a "
    "name of a namespace that no string holds in place'>more</d></r>";

std::string OfTree(std::function<void(CElement &)> const & read)
{
    CSmartPtr<CElement> const spElement(new CElement(u"e"));
    read(*spElement);
    return TextOf(spElement->Clone()->ToXmlStream());
}

std::vector<Operation> MakeOperations()
{
    CSmartPtr<CTableClass> const spSample = JsonSample::Make(std::u16string(300, u'\u00E9'), 0.1);
    auto const written = [spSample](auto const & write) { return [=] { return TextOf(write(*spSample)); }; };
    auto const read = [](CBinaryData const & data, bool bJson)
    {
        return [=]
        {
            CSmartPtr<CTableClass> const spCopy = JsonSample::New();
            bJson ? spCopy->FromJsonStream(data) : spCopy->FromXmlStream(data);
            return XmlOf(*spCopy);
        };
    };
    auto const packed = [](CTableClass & object) {
        return object.ToXmlStream(
            true, true, XmlEncoding_UTF8, EOLType_LF, CSerializationContext(), CompressionType_GZip);
    };
    static CTestFile s_file;
    return {
        {"ToXmlStream", written([](CTableClass & object) { return object.ToXmlStream(); })},
        {"ToXml", [spSample] { return Utf8(spSample->ToXml()); }},
        {"ToFastInfoset", written([](CTableClass & object) { return object.ToFastInfosetStream(); })},
        {"ToJsonStream", written([](CTableClass & object) { return object.ToJsonStream(); })},
        {"ToGzip", written(packed)},
        {"FromXmlStream", read(spSample->ToXmlStream(), false)},
        {"FromFastInfoset", read(spSample->ToFastInfosetStream(), false)},
        {"FromJsonStream", read(spSample->ToJsonStream(), true)},
        {"FromGzip", read(packed(*spSample), false)},
        {"Files",
            [spSample]
            {
                spSample->ToXmlFile(s_file.Name());
                CSmartPtr<CTableClass> const spCopy = JsonSample::New();
                spCopy->FromXmlFile(s_file.Name());
                return XmlOf(*spCopy);
            }},
        {"Element", [] { return OfTree([](CElement & e) { e.FromXml(Wide(kXml).c_str()); }); }},
        {"ElementInEveryForm",
            []
            {
                CSmartPtr<CElement> const spElement(new CElement(u"e"));
                spElement->FromXml(Wide(kXml).c_str());
                CSerializationContext ctx;
                ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes);
                return TextOf(spElement->ToFastInfosetStream(FInfoDecl_None, ctx)) +
                       TextOf(spElement->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx));
            }},
        {"FailureInXml",
            []
            {
                CSmartPtr<CTableClass> const spObject = JsonSample::New();
                return Utf8(ResultOf(
                    [&]
                    {
                        spObject->FromXml("<r><line/><line><no/></line></r>");
                        return std::u16string();
                    }));
            }},
        {"Context",
            []
            {
                CSerializationContext ctx;
                ctx.GetFIContext().SetSuggestedValues();
                ctx.GetJsonContext().SetStrict(true);
                ctx.GetAdditionalRootAttributes();
                ctx.SetDefaultNamespaceURI(u"urn:a name of a namespace that no string holds in place");
                ctx.GetProcessingInstructions().push_back(u"<?a processing instruction of some length?>");
                CSerializationContext const copy(ctx);
                return Utf8(copy.GetDefaultNamespaceURI());
            }},
        {"Values",
            []
            {
                QzVariant value;
                value.FromString(u"123456789012345678901234567890.12345678901234567890123456789012345",
                    ItemType_decimal, CWhitespaceUtils::WhitespaceRule_None);
                QzVariant copy = value;
                CBigInteger big(u"123456789012345678901234567890123456789012345678901234567890");
                CSmartPtr<CstringCol> const spCol(new CstringCol(u"e", u"", 0, -1, u"[a-z]+[0-9]{2,5}(xy|zz)?", -1, -1,
                    u"", u"", u"", u"", -1, -1, -1, CWhitespaceUtils::WhitespaceRule_None, u""));
                spCol->Add(u"abc123");
                return Utf8(copy.ToString(u"")) + Utf8((big * big).ToString());
            }},
        {"LongPattern", // too long to be kept
            []
            {
                std::u16string const strPattern = Repeated<std::u16string>(u"(a|[b-d]{2,3})", 300);
                CSmartPtr<CstringCol> const spCol(new CstringCol(u"e", u"", 0, -1, strPattern.c_str(), -1, -1, u"", u"",
                    u"", u"", -1, -1, -1, CWhitespaceUtils::WhitespaceRule_None, u""));
                spCol->Add(std::u16string(300, u'a').c_str());
                return std::string("matched");
            }},
        {"Trim",
            []
            {
                TrimMemory();
                return std::string("trimmed");
            }},
    };
}

/// Runs an operation with its n-th allocation failing. False when it has fewer.
bool RunFailing(Operation const & operation, std::size_t n)
{
    g_nUntilFailure = n;
    g_bFailed = false;
    try
    {
        t_bStaged = true;
        operation.run();
        t_bStaged = false;
    }
    catch (CQzException const & e)
    {
        t_bStaged = false;
        EXPECT_EQ(e.GetFullMessage().find(u"Invalid Regular Expression"), std::u16string::npos);
    }
    catch (std::bad_alloc const &)
    {
        t_bStaged = false;
    }
    return g_bFailed;
}

TEST(FailingAllocationsTest, EveryOneInTurn)
{
    std::size_t nFailures = 0;
    for (Operation const & operation : MakeOperations())
    {
        std::string strExpected;
        ASSERT_EQ(Utf8(ResultOf([&] { return (strExpected = operation.run()), std::u16string(); })), "")
            << operation.pszName;
        for (bool const bCold : {true, false})
        {
            // What a thread keeps goes with it, so that everything must be free again.
            auto const run = [&](std::size_t n)
            {
                bool bMore = false;
                auto const onThread = [&]
                {
                    if (!bCold)
                        operation.run();
                    bMore = RunFailing(operation, n);
                    EXPECT_TRUE(operation.run() == strExpected) << operation.pszName << " after failure " << n;
                };
                std::thread(onThread).join();
                return bMore;
            };
            // What the platform makes for the first threads stays.
            for (int nTimes = 0; nTimes < 4; ++nTimes)
                run(~std::size_t(0));
            for (std::size_t n = 0;; ++n)
            {
                std::ptrdiff_t const nLive = g_nLive;
                bool const bMore = run(n);
                EXPECT_EQ(g_nLive - nLive, 0) << operation.pszName << (bCold ? ", cold, " : ", warm, ") << n;
                nFailures += bMore;
                if (!bMore || HasFailure())
                    break;
            }
        }
    }
    std::printf("%zu allocations failed\n", nFailures);
    EXPECT_GT(nFailures, 500u);
}

} // namespace
