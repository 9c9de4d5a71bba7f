#include "examples/support/ElementTree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Documents of many shapes, each at 1, 2, 4 and 8 times its size, through reading and writing in all forms. Prints the
// exponent with which the time of each job grows; 1 is linear.
// usage: bench_growth [GREATEST EXPONENT [SHAPE]]     ends with 1 if a job grows faster

namespace
{

using namespace QzXmlLib16;
using namespace QzXmlLib16Data;

constexpr auto kNoRule = CWhitespaceUtils::WhitespaceRule_None;
constexpr int kSizes = 4;
constexpr int kAllEntries = 20;
/// Shorter times say nothing of growth.
constexpr double kLeastSeconds = 100e-6;

std::string Repeat(int n, std::function<std::string(int)> const & part)
{
    std::string str;
    for (int i = 0; i < n; ++i)
        str += part(i);
    return str;
}

std::string Number(int n)
{
    return std::to_string(n);
}

std::string InRoot(std::string const & strContent, std::string const & strAttributes = "")
{
    return "<r" + strAttributes + ">" + strContent + "</r>";
}

/// n levels around nothing; part gives what a start tag holds after its "<".
std::string Levels(int n, std::function<std::string(int)> const & part)
{
    std::string str;
    std::vector<std::string> names;
    for (int i = 0; i < n; ++i)
    {
        std::string const strTag = part(i);
        names.push_back(strTag.substr(0, strTag.find_first_of(" >")));
        str += "<" + strTag + ">";
    }
    for (; !names.empty(); names.pop_back())
        str += "</" + names.back() + ">";
    return str;
}

/// A class whose tables have as many entries as a shape asks for.
class CWide : public CXmlGeneratedClass
{
public:
    struct Tables
    {
        explicit Tables(XmlElementGroupType eGroup, bool failIfAttributeUnknown)
            : info(eGroup, XmlElementType_Element, u"r", u"", failIfAttributeUnknown, false, -1, ItemType_Invalid, u"",
                  false)
        {
        }
        ~Tables()
        {
            for (CElementInfo * pEntry : elements)
                delete pEntry;
            for (CAttributeInfo * pEntry : attributes)
                delete pEntry;
        }
        CParentElementInfo info;
        std::vector<CElementInfo *> elements;
        std::vector<CAttributeInfo *> attributes;
        std::vector<std::function<CXmlCollectionBase *()>> collections;
    };

    explicit CWide(Tables & tables) : m_tables(tables)
    {
        SetElementName(u"r");
        CWide::Init();
    }
    CXmlObjectBase * GetBase() override { return this; }
    std::u16string GetTargetNamespace() override { return u""; }
    std::u16string GetNamespace() override { return u""; }
    void Init() override
    {
        m_properties.assign(m_tables.elements.size() + m_tables.attributes.size(), QzVariant());
        for (std::size_t i = 0; i < m_tables.collections.size(); ++i)
            m_properties[i].SetXmlCollection(m_tables.collections[i]());
    }
    void AccessProperty(int index, bool read, QzVariant & value) override
    {
        QzVariant & property = m_properties[static_cast<std::size_t>(index)];
        read ? void(value = property) : void(property = value);
    }
    CParentElementInfo * GetClassInfo() const override { return &m_tables.info; }
    CElementInfo ** GetClassElementInfo() const override { return m_tables.elements.data(); }
    CAttributeInfo ** GetClassAttributeInfo() const override { return m_tables.attributes.data(); }

private:
    Tables & m_tables;
    std::vector<QzVariant> m_properties;
};

using CTables = std::shared_ptr<CWide::Tables>;

CTables MakeTables(XmlElementGroupType eGroup, std::vector<CElementInfo *> elements,
    std::vector<CAttributeInfo *> attributes = {}, std::vector<std::function<CXmlCollectionBase *()>> collections = {})
{
    auto spTables = std::make_shared<CWide::Tables>(eGroup, false);
    spTables->elements = std::move(elements);
    spTables->elements.push_back(nullptr);
    spTables->attributes = std::move(attributes);
    spTables->attributes.push_back(nullptr);
    spTables->collections = std::move(collections);
    return spTables;
}

template <class Entry>
CElementInfo * Primitive(int n)
{
    std::string const strName = "e" + Number(n);
    return new Entry(std::u16string(strName.begin(), strName.end()).c_str(), u"", n, false, ItemType_i4, u"", kNoRule,
        CPrimitiveRestrictions(), u"");
}

template <class Entry>
std::vector<CElementInfo *> Primitives(int n)
{
    std::vector<CElementInfo *> entries;
    for (int i = 0; i < n; ++i)
        entries.push_back(Primitive<Entry>(i));
    return entries;
}

/// Objects of a class with an all group.
class CWideCol : public CXmlCollection
{
public:
    CWideCol() : CXmlCollection(u"r", u"", 0, -1) {}

protected:
    void ToXml_Int(CXmlWriter * pWriter, bool, char16_t const * namespaceUri, CSerializationContext const & ctx,
        bool) const override
    {
        for (CNode const * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
            CXmlObjectBase::ToXml_Int(pNode->m_spItem, pWriter, false, namespaceUri, ctx, false);
    }
    CXmlElement * FromXml_Int(CXmlElement *, CXmlElement * pCurrent, CSerializationContext const & ctx, bool) override
    {
        static CTables const s_spTables =
            MakeTables(XmlElementGroupType_All, Primitives<CElementInfoAllPrimOpt>(kAllEntries));
        for (; pCurrent != nullptr; pCurrent = pCurrent->GetNextSiblingElement())
        {
            CSmartPtr<CWide> const spItem(new CWide(*s_spTables));
            CXmlObjectBase::FromXml_Int(spItem, pCurrent, pCurrent->GetFirstElement(), ctx);
            AppendItem(spItem);
        }
        return pCurrent;
    }
};

struct Shape
{
    char const * pszName;
    int nSize; ///< at once its size
    std::string (*pfnMake)(int n);
    /// Null for open content.
    CTables (*pfnTables)(int n) = nullptr;
};

Shape const kShapes[] = {
    {"wide", 80000, [](int n) { return InRoot(Repeat(n, [](int) { return "<a/>"; })); }},
    {"wide, other names", 20000,
        [](int n) { return InRoot(Repeat(n, [](int i) { return "<a" + Number(i) + "/>"; })); }},
    {"wide, with text", 40000,
        [](int n) { return InRoot(Repeat(n, [](int i) { return "<a>" + Number(i) + "</a>"; })); }},
    {"two names in turn", 40000, [](int n) { return InRoot(Repeat(n, [](int) { return "<a/><b/>"; })); }},
    {"same text", 40000, [](int n) { return InRoot(Repeat(n, [](int) { return "<a>same</a>"; })); }},
    {"deep", 1000, [](int n) { return Levels(n, [](int) { return "a"; }); }},
    {"deep, other names", 1000, [](int n) { return Levels(n, [](int i) { return "a" + Number(i); }); }},
    {"deep, attributes", 1000, [](int n) { return Levels(n, [](int i) { return "a b=\"" + Number(i) + "\""; }); }},
    {"many deep ones", 400,
        [](int n) { return InRoot(Repeat(n, [](int) { return Levels(90, [](int) { return "a"; }); })); }},
    {"comb", 1000,
        [](int n) { return Repeat(n, [](int) { return "<a><b>x</b>"; }) + Repeat(n, [](int) { return "</a>"; }); }},
    {"attributes of one", 8000,
        [](int n) { return InRoot("", Repeat(n, [](int i) { return " a" + Number(i) + "=\"v\""; })); }},
    {"attributes of many", 8000,
        [](int n)
        {
            return InRoot(Repeat(
                n, [](int) { return "<a" + Repeat(10, [](int i) { return " a" + Number(i) + "=\"v\""; }) + "/>"; }));
        }},
    {"long attribute", 800000, [](int n) { return InRoot("", " a=\"" + std::string(std::size_t(n), 'x') + "\""); }},
    {"attribute of escapes", 200000,
        [](int n) { return InRoot("", " a=\"" + Repeat(n, [](int) { return "&lt;"; }) + "\""); }},
    {"other values", 40000,
        [](int n) { return InRoot(Repeat(n, [](int i) { return "<a b=\"" + Number(i) + "\"/>"; })); }},
    {"same values", 40000, [](int n) { return InRoot(Repeat(n, [](int) { return "<a b=\"same\"/>"; })); }},
    {"long text", 1600000, [](int n) { return InRoot(std::string(std::size_t(n), 'x')); }},
    {"text of escapes", 200000, [](int n) { return InRoot(Repeat(n, [](int) { return "&amp;"; })); }},
    {"text of references", 200000, [](int n) { return InRoot(Repeat(n, [](int) { return "&#955;"; })); }},
    {"text beyond ASCII", 400000, [](int n) { return InRoot(Repeat(n, [](int) { return "\xCE\xBB"; })); }},
    {"text beyond 16 bits", 200000, [](int n) { return InRoot(Repeat(n, [](int) { return "\xF0\x9F\x98\x80"; })); }},
    {"lines", 200000, [](int n) { return InRoot(Repeat(n, [](int) { return "line\r\n"; })); }},
    {"sections", 40000, [](int n) { return InRoot(Repeat(n, [](int) { return "<![CDATA[<a>]]>."; })); }},
    {"comments", 80000, [](int n) { return InRoot(Repeat(n, [](int) { return "x<!-- c -->"; })); }},
    {"instructions", 80000, [](int n) { return InRoot(Repeat(n, [](int) { return "<?p x?>"; })); }},
    {"mixed text", 40000, [](int n) { return InRoot(Repeat(n, [](int i) { return Number(i) + "<a/>"; })); }},
    {"white space", 40000, [](int n) { return InRoot(Repeat(n, [](int) { return "\n    <a/>"; })); }},
    {"entities", 40000,
        [](int n) { return "<!DOCTYPE r [<!ENTITY e 'text'>]>" + InRoot(Repeat(n, [](int) { return "&e;"; })); }},
    {"many entities", 8000,
        [](int n)
        {
            return "<!DOCTYPE r [" + Repeat(n, [](int i) { return "<!ENTITY e" + Number(i) + " 'x'>"; }) + "]>" +
                   InRoot(Repeat(n, [](int i) { return "&e" + Number(i) + ";"; }));
        }},
    {"default attributes", 20000,
        [](int n) {
            return "<!DOCTYPE r [<!ATTLIST a b CDATA 'c' d CDATA 'e'>]>" +
                   InRoot(Repeat(n, [](int) { return "<a/>"; }));
        }},
    {"namespaces of the root", 1000,
        [](int n)
        {
            return InRoot(Repeat(n, [](int i) { return "<p" + Number(i) + ":a/>"; }),
                Repeat(n, [](int i) { return " xmlns:p" + Number(i) + "=\"urn:" + Number(i) + "\""; }));
        }},
    {"namespace of each", 16000,
        [](int n) { return InRoot(Repeat(n, [](int i) { return "<p:a xmlns:p=\"urn:" + Number(i) + "\"/>"; })); }},
    {"namespaces, nested", 1000,
        [](int n)
        {
            return Levels(n,
                [](int i)
                {
                    std::string const strPrefix = "p" + Number(i);
                    return strPrefix + ":a xmlns:" + strPrefix + "=\"urn:" + Number(i) + "\"";
                });
        }},
    {"default ones in turn", 1000,
        [](int n) { return Levels(n, [](int i) { return "a xmlns=\"urn:" + Number(i % 2) + "\""; }); }},
    {"attributes in namespaces", 500,
        [](int n)
        {
            return InRoot("", Repeat(n,
                                  [](int i)
                                  {
                                      std::string const str = Number(i);
                                      return " xmlns:p" + str + "=\"urn:" + str + "\" p" + str + ":a=\"v\"";
                                  }));
        }},
    {"long names", 800,
        [](int n)
        { return InRoot(Repeat(n, [](int i) { return "<a" + Number(i) + std::string(1000, 'x') + "/>"; })); }},
    {"long namespace", 20000,
        [](int n)
        {
            return InRoot(Repeat(n, [](int i) { return "<p:a" + Number(i) + "/>"; }),
                " xmlns:p=\"urn:" + std::string(500, 'u') + "\"");
        }},
    {"ignored elements", 40000,
        [](int n) { return InRoot(Repeat(n, [](int i) { return "<x" + Number(i % 9) + "/>"; })); },
        [](int) { return MakeTables(XmlElementGroupType_Sequence, Primitives<CElementInfoSeqPrimOpt>(1)); }},
    {"all in reverse", 4000,
        [](int n)
        {
            std::string strItem;
            for (int i = kAllEntries; i-- > 0;)
                strItem += "<e" + Number(i) + ">1</e" + Number(i) + ">";
            return InRoot(Repeat(n, [&](int) { return "<r>" + strItem + "</r>"; }));
        },
        [](int)
        {
            return MakeTables(XmlElementGroupType_Sequence,
                {new CElementInfoSeqClsCol(u"r", u"", 0, XmlElementType_Element)}, {},
                {[]() -> CXmlCollectionBase * { return new CWideCol; }});
        }},
    {"array", 40000, [](int n) { return InRoot(Repeat(n, [](int i) { return "<e>" + Number(i) + "</e>"; })); },
        [](int)
        {
            return MakeTables(XmlElementGroupType_Sequence, {new CElementInfoSeqPrimCol(u"e", u"", 0)}, {},
                {[]() -> CXmlCollectionBase * {
                    return new Ci4Col(
                        u"e", u"", 0, -1, nullptr, -1, -1, u"", u"", u"", u"", -1, -1, -1, kNoRule, nullptr);
                }});
        }},
    {"open content", 20000,
        [](int n) { return InRoot(Repeat(n, [](int i) { return "<a b=\"c\">" + Number(i) + "</a>"; })); },
        [](int)
        {
            return MakeTables(XmlElementGroupType_Sequence, {new CElementInfoSeqUntpdCol(u"AnyElement", u"", 0)}, {},
                {[]() -> CXmlCollectionBase * { return new CElementCol(u"", u"##any", u"", 0, -1); }});
        }},
};

double ThreadSeconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// The shortest of some runs.
double Seconds(std::function<void()> const & job)
{
    double dBest = 1e9;
    for (int i = 0; i < 5; ++i)
    {
        double const dStart = ThreadSeconds();
        job();
        dBest = std::min(dBest, ThreadSeconds() - dStart);
    }
    return dBest;
}

constexpr char const * kJobs[] = {"read XML", "write XML", "write FI", "read FI", "write JSON", "read JSON"};
using CTimes = std::array<std::array<double, kSizes>, std::size(kJobs)>;

CSmartPtr<CXmlObjectBase> NewObject(CTables const & spTables)
{
    if (spTables != nullptr)
        return CSmartPtr<CXmlObjectBase>(new CWide(*spTables));
    return CSmartPtr<CXmlObjectBase>(new CRootElement);
}

/// A job that a form refuses, as nesting of more than 100 levels in JSON, takes no time.
void Measure(Shape const & shape, int nSize, CTimes & times)
{
    int const n = shape.nSize << nSize;
    std::string const strXml = shape.pfnMake(n);
    CTables const spTables = shape.pfnTables != nullptr ? shape.pfnTables(n) : nullptr;
    CSerializationContext ctx;
    CReadLimits limits;
    limits.nMaxAmplification = 0;
    ctx.SetReadLimits(limits);
    ctx.SetIgnoreUnknownElements(spTables != nullptr);
    ctx.GetJsonContext().SetStrict(true);
    ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes);
    CBinaryData const xml(
        reinterpret_cast<unsigned char const *>(strXml.data()), static_cast<std::uint32_t>(strXml.size()));
    CSmartPtr<CXmlObjectBase> const spObject = NewObject(spTables);
    spObject->FromXmlStream(xml, ctx);
    // Indentation would grow with the square of the depth. What is ignored would not be in what the object writes.
    CSmartPtr<CRootElement> const spAny(new CRootElement);
    spAny->FromXmlStream(xml, ctx);
    CBinaryData binary, json;
    auto const read = [&](CBinaryData const & data) { NewObject(spTables)->FromXmlStream(data, ctx); };
    auto const run = [&](std::size_t nJob, std::function<void()> const & job)
    {
        try
        {
            job();
            times[nJob][static_cast<std::size_t>(nSize)] = Seconds(job);
        }
        catch (CQzException const &)
        {
            times[nJob][static_cast<std::size_t>(nSize)] = 0;
        }
    };
    run(0, [&] { read(xml); });
    run(1, [&] { spObject->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx); });
    run(2, [&] { spObject->ToFastInfosetStream(FInfoDecl_None, ctx); });
    binary = spAny->ToFastInfosetStream(FInfoDecl_None, ctx);
    run(3, [&] { read(binary); });
    run(4, [&] { json = spObject->ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, ctx); });
    run(5, [&] { NewObject(spTables)->FromJsonStream(json, ctx); });
}

/// The slope of the times from the second size on, on two logarithmic scales; 0 if the job was refused or too short.
/// What fits into caches and kept memory at first only would pass for growth.
double Exponent(std::array<double, kSizes> const & times)
{
    if (times[1] < kLeastSeconds || times[3] < kLeastSeconds)
        return 0;
    return std::log2(times[3] / times[1]) / 2;
}

} // namespace

int main(int argc, char ** argv)
{
    double const dGreatest = argc > 1 ? std::atof(argv[1]) : 1.15;
    std::printf("%-26s", "exponent of the time");
    for (char const * pszJob : kJobs)
        std::printf(" %11s", pszJob);
    std::printf("\n");
    int nAbove = 0;
    int nShapes = 0;
    for (Shape const & shape : kShapes)
    {
        if (argc > 2 && std::strcmp(argv[2], shape.pszName) != 0)
            continue;
        ++nShapes;
        std::array<double, std::size(kJobs)> exponents{};
        // Other work on the machine must not pass for growth: what seems to grow is measured again.
        for (int nTry = 0; nTry < 3; ++nTry)
        {
            CTimes times{};
            try
            {
                for (int nSize = 0; nSize < kSizes; ++nSize)
                    Measure(shape, nSize, times);
            }
            catch (CQzException const & failure)
            {
                std::u16string const strText = failure.GetFullMessage();
                std::printf("%s: %s\n", shape.pszName, std::string(strText.begin(), strText.end()).c_str());
                return 2;
            }
            for (std::size_t n = 0; n < exponents.size(); ++n)
                exponents[n] = nTry == 0 ? Exponent(times[n]) : std::min(exponents[n], Exponent(times[n]));
            if (*std::max_element(exponents.begin(), exponents.end()) <= dGreatest)
                break;
        }
        std::printf("%-26s", shape.pszName);
        for (double const dExponent : exponents)
        {
            nAbove += dExponent > dGreatest ? 1 : 0;
            if (dExponent == 0)
                std::printf(" %11s", "-");
            else
                std::printf(" %10.2f%c", dExponent, dExponent > dGreatest ? '!' : ' ');
        }
        std::printf("\n");
    }
    std::printf("%d shapes, %d jobs grow with more than %.2f\n", nShapes, nAbove, dGreatest);
    return nAbove == 0 ? 0 : 1;
}
