#include "bench/BareParse.h"
#include "bench/Orders.h"
#include "bench/PeakMemory.h"
#include "bench/Timing.h"
#include "bench/Tree.h"
#include "examples/support/ElementTree.h"
#include "examples/support/Utf8.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

/// Measures the whole road, from a file of purchase orders to objects and back, against a bare parse of the same
/// octets.

namespace
{

using namespace QzXmlLib16;

struct Options
{
    std::string strFile;
    Timing::Effort effort;
    std::string strRows = "xml,fi,json,any,memory,threads,odd";

    bool Wants(char const * pszRows) const
    {
        return ("," + strRows + ",").find("," + std::string(pszRows) + ",") != std::string::npos;
    }
};

std::string ReadFile(std::string const & strFile)
{
    std::string strOctets;
    std::ifstream stream(strFile, std::ios::binary);
    if (!stream)
        throw CQzException(Widen("The file cannot be read: " + strFile));
    strOctets.resize(std::filesystem::file_size(strFile));
    stream.read(strOctets.data(), static_cast<std::streamsize>(strOctets.size()));
    return strOctets;
}

unsigned char * Octets(std::string & strOctets)
{
    return reinterpret_cast<unsigned char *>(strOctets.data());
}

/// Documents that are indented are also written so, that the octets are about the same in both directions.
bool IsIndented(std::string const & strXml)
{
    return strXml.find("\n  <") < 4096 || strXml.find("\n\t<") < 4096;
}

CSmartPtr<Orders::COrders> ReadOrders(std::string & strXml)
{
    CSmartPtr<Orders::COrders> spOrders(new Orders::COrders);
    spOrders->FromXmlStream(Octets(strXml), strXml.size());
    return spOrders;
}

/// The text without its declaration, which names an encoding that a wide text does not have.
std::u16string WideText(std::string const & strXml)
{
    std::size_t const nStart = strXml.compare(0, 5, "<?xml") == 0 ? strXml.find("?>") + 2 : 0;
    return Widen(std::string_view(strXml).substr(nStart));
}

/// The octets that a parser needs for a wide text: a byte order mark, and two for each unit.
std::string WideOctets(std::u16string const & strXml)
{
    std::string strOctets = "\xFF\xFE";
    strOctets.append(reinterpret_cast<char const *>(strXml.data()), strXml.size() * 2);
    return strOctets;
}

void PrintRow(char const * pszName, double seconds, std::size_t nOctets, double ratio, char const * pszGoal)
{
    std::printf("%-34s %12.3f ms %9.1f MB/s %8.3f   %s\n", pszName, seconds * 1e3,
        static_cast<double>(nOctets) / seconds / 1e6, ratio, pszGoal);
    std::fflush(stdout);
}

bool XmlRows(Options const & options)
{
    std::string strXml = ReadFile(options.strFile);
    std::u16string const strWide = WideText(strXml);
    std::string const strWideOctets = WideOctets(strWide);
    bool const bFormatted = IsIndented(strXml);
    CSmartPtr<Orders::COrders> const spOrders = ReadOrders(strXml);

    CSmartPtr<Orders::COrders> const spCopy(new Orders::COrders);
    spCopy->FromXmlStream(spOrders->ToXmlStream());
    if (!Generated::Agree(*spOrders, *spCopy))
    {
        std::fprintf(stderr, "bench_orders: the objects come back changed\n");
        return false;
    }

    Timing::Job const bare = [&] { BareParse(strXml.data(), strXml.size()); };
    Timing::Job const bareWide = [&] { BareParse(strWideOctets.data(), strWideOctets.size()); };
    struct Row
    {
        char const * pszName;
        Timing::Job const & base;
        Timing::Job job;
        std::size_t nOctets;
        char const * pszGoal;
    };
    Row const rows[] = {
        {"UTF-8 XML to objects", bare, [&] { ReadOrders(strXml); }, strXml.size(), "at least 0.55"},
        {"wide string to objects", bareWide,
            [&]
            {
                CSmartPtr<Orders::COrders> spRead(new Orders::COrders);
                spRead->FromXml(strWide.c_str());
            },
            strWideOctets.size(), "at least 0.45"},
        {"objects to UTF-8 XML", bare, [&] { spOrders->ToXmlStream(true, bFormatted); }, strXml.size(), "at least 2.5"},
        {"objects to wide string", bareWide, [&] { spOrders->ToXml(true, bFormatted); }, strWideOctets.size(),
            "at least 2.5"},
    };
    std::printf("%-34s %15s %14s %8s   %s\n", "job", "median", "speed", "ratio", "goal");
    bool bFirst = true;
    for (Row const & row : rows)
    {
        Timing::Result const result = Timing::Compare(row.base, row.job, options.effort);
        if (&row.base == &bareWide && bFirst)
        {
            PrintRow("bare parse, UTF-16", result.baseSeconds, strWideOctets.size(), 1, "");
            bFirst = false;
        }
        else if (&row == rows)
            PrintRow("bare parse, UTF-8", result.baseSeconds, strXml.size(), 1, "");
        PrintRow(row.pszName, result.jobSeconds, row.nOctets, result.ratio, row.pszGoal);
    }
    return true;
}

/// The binary form. Speeds count the octets of the XML text, so that they compare with the rows above.
void FastInfosetRows(Options const & options)
{
    std::string strXml = ReadFile(options.strFile);
    CSmartPtr<Orders::COrders> const spOrders = ReadOrders(strXml);
    CSerializationContext plain;
    CSerializationContext suggested;
    suggested.GetFIContext().SetSuggestedValues();
    struct Form
    {
        char const * pszName;
        CSerializationContext const & ctx;
        char const * pszSpeedGoal;
        char const * pszSizeGoal;
    };
    Form const forms[] = {
        {"Fast Infoset", plain, "at least 2.0", "at most 0.30"},
        {"suggested values", suggested, "", ""},
    };
    Timing::Job const bare = [&] { BareParse(strXml.data(), strXml.size()); };
    for (Form const & form : forms)
    {
        CBinaryData const data = spOrders->ToFastInfosetStream(FInfoDecl_None, form.ctx);
        auto const read = [&]
        {
            CSmartPtr<Orders::COrders> spRead(new Orders::COrders);
            spRead->FromXmlStream(data, form.ctx);
            return spRead;
        };
        if (!Generated::Agree(*spOrders, *read()))
            throw CQzException(u"The objects come back changed from " + Widen(form.pszName));
        std::string const strName(form.pszName);
        Timing::Result const reading = Timing::Compare(
            bare, [&] { read(); }, options.effort);
        Timing::Result const writing = Timing::Compare(
            bare, [&] { spOrders->ToFastInfosetStream(FInfoDecl_None, form.ctx); }, options.effort);
        PrintRow(
            (strName + " to objects").c_str(), reading.jobSeconds, strXml.size(), reading.ratio, form.pszSpeedGoal);
        PrintRow(
            ("objects to " + strName).c_str(), writing.jobSeconds, strXml.size(), writing.ratio, form.pszSpeedGoal);
        std::printf("%-34s %12.3f of the XML text   %s\n", ("size of " + strName).c_str(),
            static_cast<double>(data.GetLength()) / static_cast<double>(strXml.size()), form.pszSizeGoal);
    }
}

/// The same document without classes of its own, as a tree of elements.
void AnyRows(Options const & options)
{
    std::string strXml = ReadFile(options.strFile);
    auto const read = [&]
    {
        CSmartPtr<CElement> spRoot(new CRootElement);
        spRoot->FromXmlStream(reinterpret_cast<unsigned char *>(strXml.data()), strXml.size());
        return spRoot;
    };
    CSmartPtr<CElement> const spRoot = read();
    {
        // Not the tree that is measured: whoever asks an element for its collections makes them.
        CSmartPtr<CElement> const spChecked = read();
        CSmartPtr<CElement> const spCopy(new CRootElement);
        spCopy->FromXmlStream(spRoot->ToXmlStream(true, false));
        if (!AgreeElements(*spChecked, *spCopy))
            throw CQzException(u"The tree of elements comes back changed");
    }
    Timing::Job const bare = [&] { BareParse(strXml.data(), strXml.size()); };
    Timing::Result const reading = Timing::Compare(
        bare, [&] { read(); }, options.effort);
    Timing::Result const writing = Timing::Compare(
        bare, [&] { spRoot->ToXmlStream(true, false); }, options.effort);
    PrintRow("XML to a tree of CElement", reading.jobSeconds, strXml.size(), reading.ratio, "at least 0.40");
    PrintRow("tree of CElement to XML", writing.jobSeconds, strXml.size(), writing.ratio, "at least 2.0");
}

/// JSON of the same objects against a bare parse of their XML text, under the options of ctx.
bool JsonRows(Options const & options, char const * pszKind, CSerializationContext const & ctx)
{
    std::string strXml = ReadFile(options.strFile);
    bool const bFormatted = IsIndented(strXml);
    CSmartPtr<Orders::COrders> const spOrders = ReadOrders(strXml);
    auto const write = [&] { return spOrders->ToJsonStream(bFormatted, XmlEncoding_UTF8, EOLType_LF, ctx); };
    CBinaryData const json = write();
    auto const read = [&]
    {
        CSmartPtr<Orders::COrders> spRead(new Orders::COrders);
        spRead->FromJsonStream(json, ctx);
        return spRead;
    };
    if (!Generated::Agree(*spOrders, *read()))
    {
        std::fprintf(stderr, "bench_orders: the objects come back changed from JSON\n");
        return false;
    }
    Timing::Job const bare = [&] { BareParse(strXml.data(), strXml.size()); };
    Timing::Result const readTimes = Timing::Compare(bare, read, options.effort);
    PrintRow((std::string("JSON to objects") + pszKind).c_str(), readTimes.jobSeconds, json.GetLength(),
        readTimes.ratio, "at least 0.40");
    Timing::Result const writeTimes = Timing::Compare(bare, write, options.effort);
    PrintRow((std::string("objects to JSON") + pszKind).c_str(), writeTimes.jobSeconds, json.GetLength(),
        writeTimes.ratio, "at least 2.5");
    return true;
}

bool JsonRows(Options const & options)
{
    CSerializationContext ctx;
    ctx.SetDefaultNamespaceURI(Orders::kNamespace);
    bool const bSame = JsonRows(options, "", ctx);
    ctx.GetJsonContext().SetStrict(true);
    return JsonRows(options, ", strict", ctx) && bSame;
}

void PrintGrowth(char const * pszName, std::int64_t nGrowth, double octets, char const * pszGoal)
{
    std::printf("%-34s %12.0f KB %9.2f octets per octet   %s\n", pszName, static_cast<double>(nGrowth) / 1e3,
        static_cast<double>(nGrowth) / octets, pszGoal);
    std::fflush(stdout);
}

/// Growth of peak memory. This process must not have much of its own yet: what it has freed would be used again.
void MemoryRows(Options const & options)
{
    auto const octets = static_cast<double>(std::filesystem::file_size(options.strFile));
    std::string strXml;
    CSmartPtr<Orders::COrders> spOrders;
    auto const load = [&] { strXml = ReadFile(options.strFile); };
    auto const loadObjects = [&]
    {
        load();
        spOrders = ReadOrders(strXml);
        std::string().swap(strXml);
    };
    auto const nothing = [] {};
    auto const warmUp = []
    {
        CSmartPtr<Orders::COrders> const spSmall(new Orders::COrders);
        spSmall->FromXml("<orders xmlns='urn:example:orders:v1' version='1'/>");
        spSmall->FromXmlStream(spSmall->ToXmlStream());
        spSmall->FromJsonStream(spSmall->ToJsonStream());
    };
    auto const growth = [&](std::function<void()> const & prepare, std::function<void()> const & job)
    { return PeakGrowth(prepare, warmUp, job); };

    std::printf("%-34s %15s\n", "growth of peak memory", "");
    PrintGrowth("UTF-8 XML to objects", growth(load, [&] { ReadOrders(strXml); }), octets, "at most 6");
    PrintGrowth("ToXmlStream", growth(loadObjects, [&] { spOrders->ToXmlStream(true, true); }), octets, "at most 3");
    CSerializationContext ctx;
    ctx.SetDefaultNamespaceURI(Orders::kNamespace);
    CBinaryData json;
    auto const loadJson = [&]
    {
        loadObjects();
        json = spOrders->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx);
        spOrders = nullptr;
    };
    PrintGrowth("JSON to objects",
        growth(loadJson, [&] { CSmartPtr<Orders::COrders>(new Orders::COrders)->FromJsonStream(json, ctx); }), octets,
        "at most 12 per octet of JSON");
    PrintGrowth("ToJsonStream",
        growth(loadObjects, [&] { spOrders->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx); }), octets,
        "at most 12");
    std::u16string const strOut = Widen((std::filesystem::temp_directory_path() / "bench_orders.xml").string());
    PrintGrowth("ToXmlFile, asynchronous",
        growth(loadObjects,
            [&]
            {
                AsyncToXmlFile(true);
                spOrders->ToXmlFile(strOut.c_str());
            }),
        octets, "constant");
    std::filesystem::remove(Narrow(strOut));
    std::u16string const strIn = Widen(options.strFile);
    PrintGrowth("Load, elements dropped",
        growth(nothing,
            [&]
            {
                AsyncFromXmlFile(true);
                CXmlDocument document([](CXmlElement *) { return true; });
                document.Load(strIn.c_str());
            }),
        octets, "constant");
}

void ThreadRows(Options const & options)
{
    std::string strFirst = ReadFile(options.strFile);
    std::string strSecond = strFirst;
    CSmartPtr<Orders::COrders> const spFirst = ReadOrders(strFirst);
    CSmartPtr<Orders::COrders> const spSecond = ReadOrders(strSecond);
    double const bare = Timing::GainOfTwoThreads([&] { BareParse(strFirst.data(), strFirst.size()); },
        [&] { BareParse(strSecond.data(), strSecond.size()); }, options.effort);
    double const read =
        Timing::GainOfTwoThreads([&] { ReadOrders(strFirst); }, [&] { ReadOrders(strSecond); }, options.effort);
    double const write =
        Timing::GainOfTwoThreads([&] { spFirst->ToXmlStream(); }, [&] { spSecond->ToXmlStream(); }, options.effort);
    std::printf("%-34s %15s\n%-34s %12.2f\n", "gain of two threads", "", "two bare parses", bare);
    std::printf("%-34s %12.2f %26.3f   %s\n", "UTF-8 XML to objects", read, read / bare, "at least 0.9");
    std::printf("%-34s %12.2f %26.3f   %s\n", "objects to UTF-8 XML", write, write / bare, "at least 0.9");
    std::fflush(stdout);
}

/// Time of odd documents, for each octet, against that of an ordinary one of the same elements.
void OddRows(Options const & options)
{
    CSerializationContext ctx;
    ctx.SetIgnoreNamespaces(true);
    auto const read = [&](std::string & strXml)
    {
        CSmartPtr<Odd::CTree> spTree(new Odd::CTree);
        spTree->FromXmlStream(Octets(strXml), strXml.size(), ctx);
        return spTree;
    };
    CSerializationContext aliases;
    for (int n = 0; n < 1000; ++n)
        aliases.GetNamespaceAliases().Add(
            Widen("p" + std::to_string(n)).c_str(), Widen("urn:example:tree:" + std::to_string(n)).c_str());

    std::printf("%-34s %15s %14s %8s   %s\n", "odd documents, time per octet", "bare parse", "read", "write",
        "goal: at most 1.5 times the ordinary");
    for (auto make : {&Odd::MillionSiblings, &Odd::Deep, &Odd::ThousandAliases})
    {
        Odd::Document odd = make();
        Odd::Document ordinary = Odd::Ordinary(odd.nElements);
        CSmartPtr<Odd::CTree> const spOrdinary = read(ordinary.strXml);
        std::size_t const nOrdinaryOut = spOrdinary->ToXmlStream(true, false).GetLength();
        CSmartPtr<Odd::CTree> const spOdd = read(odd.strXml);
        CSerializationContext const & writeCtx =
            make == &Odd::ThousandAliases ? aliases : CSerializationContext::GetDefaultContext();
        auto const write = [&] { return spOdd->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, writeCtx); };
        double const perOctet = static_cast<double>(ordinary.strXml.size()) / static_cast<double>(odd.strXml.size());
        double const perOctetOut = static_cast<double>(nOrdinaryOut) / static_cast<double>(write().GetLength());
        Timing::Result const bareTimes =
            Timing::Compare([&] { BareParse(ordinary.strXml.data(), ordinary.strXml.size()); },
                [&] { BareParse(odd.strXml.data(), odd.strXml.size()); }, options.effort);
        Timing::Result const readTimes =
            Timing::Compare([&] { read(ordinary.strXml); }, [&] { read(odd.strXml); }, options.effort);
        Timing::Result const writeTimes =
            Timing::Compare([&] { spOrdinary->ToXmlStream(true, false); }, [&] { write(); }, options.effort);
        std::printf("%-34s %15.3f %14.3f %8.3f\n", odd.pszName, perOctet / bareTimes.ratio, perOctet / readTimes.ratio,
            perOctetOut / writeTimes.ratio);
        std::fflush(stdout);
    }
}

Options ParseOptions(int argc, char ** argv)
{
    Options options;
    for (int n = 1; n < argc; ++n)
    {
        if (std::strcmp(argv[n], "--quick") == 0)
            options.effort = {1, 0.02};
        else if (std::strcmp(argv[n], "--rows") == 0 && n + 1 < argc)
            options.strRows = argv[++n];
        else if (argv[n][0] != '-' && options.strFile.empty())
            options.strFile = argv[n];
        else
            return Options();
    }
    return options;
}

} // namespace

int main(int argc, char ** argv)
{
    Options const options = ParseOptions(argc, argv);
    if (options.strFile.empty())
    {
        std::fprintf(stderr, "usage: bench_orders FILE.xml [--quick] [--rows xml,fi,json,any,memory,threads,odd]\n"
                             "FILE.xml holds purchase orders of orders.xsd; make_orders writes such files.\n");
        return 2;
    }
    try
    {
        std::printf("%s, %.3f MB\n", options.strFile.c_str(),
            static_cast<double>(std::filesystem::file_size(options.strFile)) / 1e6);
        // First of all, while this process is small.
        if (options.Wants("memory"))
            MemoryRows(options);
        if (options.Wants("xml") && !XmlRows(options))
            return 1;
        if (options.Wants("fi"))
            FastInfosetRows(options);
        if (options.Wants("any"))
            AnyRows(options);
        if (options.Wants("json") && !JsonRows(options))
            return 1;
        if (options.Wants("threads"))
            ThreadRows(options);
        if (options.Wants("odd"))
            OddRows(options);
    }
    catch (CQzException const & failure)
    {
        std::fprintf(stderr, "bench_orders: %s\n", Narrow(failure.GetFullMessage()).c_str());
        return 1;
    }
    catch (std::filesystem::filesystem_error const & failure)
    {
        std::fprintf(stderr, "bench_orders: %s\n", failure.what());
        return 1;
    }
    return 0;
}
