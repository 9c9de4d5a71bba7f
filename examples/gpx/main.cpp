#include "examples/gpx/Summary.h"
#include "examples/gpx/Survey.h"
#include "examples/support/Report.h"

#include <cstdio>
#include <cstring>

/// Reads GPX files, tells what is in them, and takes each through every form that the library writes and back.

namespace
{

using namespace QzXmlLib16;

using Write = CBinaryData(Gpx::CGpx const & gpx, CSerializationContext const & ctx, CompressionType eCompression);
using Read = void(Gpx::CGpx & gpx, CBinaryData const & data, CSerializationContext const & ctx);

/// One way to write an object as octets and to read them.
struct Form
{
    char const * pszName;
    Write * pfnWrite;
    Read * pfnRead;
    CompressionType eCompression;
    /// Numbers and dates in the short forms of Fast Infoset.
    bool bSuggestedValues;
    /// Of JSON: whether namespaces keep their prefixes, and whether it is that of RFC 8259.
    JsonRoundTrip eRoundTrip = JsonRoundTrip_Full;
    bool bStrict = true;
};

CBinaryData WriteXml(Gpx::CGpx const & gpx, CSerializationContext const & ctx, CompressionType eCompression)
{
    // Indenting would add to the white space that extensions hold.
    return gpx.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx, eCompression);
}
CBinaryData WriteFastInfoset(Gpx::CGpx const & gpx, CSerializationContext const & ctx, CompressionType eCompression)
{
    return gpx.ToFastInfosetStream(FInfoDecl_None, ctx, eCompression);
}
CBinaryData WriteJson(Gpx::CGpx const & gpx, CSerializationContext const & ctx, CompressionType eCompression)
{
    return gpx.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx, eCompression);
}
/// XML or Fast Infoset: the octets tell which.
void ReadXml(Gpx::CGpx & gpx, CBinaryData const & data, CSerializationContext const & ctx)
{
    gpx.FromXmlStream(data, ctx);
}
void ReadJson(Gpx::CGpx & gpx, CBinaryData const & data, CSerializationContext const & ctx)
{
    gpx.FromJsonStream(data, ctx);
}

constexpr Form kForms[] = {
    {"XML", &WriteXml, &ReadXml, CompressionType_None, false},
    {"XML, gzip", &WriteXml, &ReadXml, CompressionType_GZip, false},
    {"Fast Infoset", &WriteFastInfoset, &ReadXml, CompressionType_None, false},
    {"FI, short values", &WriteFastInfoset, &ReadXml, CompressionType_None, true},
    {"FI, gzip", &WriteFastInfoset, &ReadXml, CompressionType_GZip, false},
    {"JSON", &WriteJson, &ReadJson, CompressionType_None, false},
    {"JSON, gzip", &WriteJson, &ReadJson, CompressionType_GZip, false},
    {"JSON, bare names", &WriteJson, &ReadJson, CompressionType_None, false, JsonRoundTrip_Attributes},
    {"JSON, loose", &WriteJson, &ReadJson, CompressionType_None, false, JsonRoundTrip_Full, false},
    {"JSON, loose bare", &WriteJson, &ReadJson, CompressionType_None, false, JsonRoundTrip_Attributes, false},
};

/// The options under which files are read: what GPX has no place for is left out.
CSerializationContext ReadContext()
{
    CSerializationContext ctx;
    ctx.SetIgnoreUnknownElements(true);
    return ctx;
}

/// The options under which a form is written and read.
CSerializationContext FormContext(Form const & form, std::set<std::u16string> const & foreignNamespaces)
{
    CSerializationContext ctx = ReadContext();
    ctx.SetDefaultNamespaceURI(Gpx::kNamespace);
    ctx.GetJsonContext().SetStrict(form.bStrict);
    // JSON keeps what others have added if their namespaces have prefixes.
    ctx.GetJsonContext().SetSupportRoundtrip(form.eRoundTrip);
    int nAlias = 0;
    for (std::u16string const & strNamespace : foreignNamespaces)
        ctx.GetNamespaceAliases().Add(FormatString(u"x%d", ++nAlias).c_str(), strNamespace.c_str());
    // For readers other than this library; short values fall back on text where they must.
    ctx.GetFIContext().SetStrict(true);
    if (form.bSuggestedValues)
        ctx.GetFIContext().SetSuggestedValues();
    return ctx;
}

/// The time from one to the other, as a person says it.
std::string Elapsed(CDateTime const & first, CDateTime const & last)
{
    std::int64_t const nMinutes = (last.GetTime() - first.GetTime()) / 60;
    std::string const strMinutes = std::to_string(nMinutes % 60) + " min";
    return nMinutes < 60 ? strMinutes : std::to_string(nMinutes / 60) + " h " + strMinutes;
}

void PrintSummary(Gpx::Summary const & summary, Gpx::Survey const & survey, int nKept)
{
    std::printf("  points   %d way points, %d in %d routes, %d in %d tracks of %d segments\n", summary.nWayPoints,
        summary.nRoutePoints, summary.nRoutes, summary.nTrackPoints, summary.nTracks, summary.nSegments);
    if (summary.GetPointCount() > 0)
        std::printf("  bounds   latitude %.6f to %.6f, longitude %.6f to %.6f\n", summary.minLat, summary.maxLat,
            summary.minLon, summary.maxLon);
    std::printf("  length   %.3f km of tracks, %.3f km of routes\n", summary.trackKm, summary.routeKm);
    if (summary.first)
        std::printf("  time     %s to %s, %s\n", Narrow(summary.first->ToString()).c_str(),
            Narrow(summary.last->ToString()).c_str(), Elapsed(*summary.first, *summary.last).c_str());
    if (survey.nExtensions > 0)
        std::printf("  others   %d extensions elements, %d elements in them\n", survey.nExtensions, summary.nForeign);
    if (survey.nElements != nKept)
        std::printf("  left out %d elements that stand where GPX has no place for them, %d of them points\n",
            survey.nElements - nKept, survey.nPoints - summary.GetPointCount());
}

/// Writes the object in one form, reads it back and prints a line of the table. False if the copy differs.
bool PrintForm(Form const & form, Gpx::CGpx & gpx, CSerializationContext const & ctx)
{
    CBinaryData data;
    double writeMs = 0;
    try
    {
        writeMs = Milliseconds([&] { data = form.pfnWrite(gpx, ctx, form.eCompression); });
    }
    catch (CQzException const & failure)
    {
        // Octets that compression would not shorten are refused, as those of a very small file.
        if (form.eCompression == CompressionType_None)
            throw;
        std::printf("  %-16s %s\n", form.pszName, Explain(failure).c_str());
        return true;
    }
    CSmartPtr<Gpx::CGpx> spCopy(new Gpx::CGpx);
    double const readMs = Milliseconds([&] { form.pfnRead(*spCopy, data, ctx); });
    // Bare names keep all but the namespaces of what others have added.
    bool const bAgrees = Generated::Agree(gpx, *spCopy) || (form.eRoundTrip != JsonRoundTrip_Full &&
                                                               form.pfnWrite(*spCopy, ctx, form.eCompression) == data);
    double const megabytes = data.GetLength() / 1e6;
    std::printf("  %-16s %10u %10.2f %8.1f %10.2f %8.1f  %s\n", form.pszName, data.GetLength(), writeMs,
        megabytes / (writeMs / 1e3), readMs, megabytes / (readMs / 1e3), bAgrees ? "same" : "DIFFERS");
    return bAgrees;
}

/// Whether a text holds a line feed, told by its escape. A backslash in front of an n counts as one, too.
bool HoldsLineFeed(Gpx::CGpx const & gpx, CSerializationContext const & strict)
{
    return gpx.ToJson(false, EOLType_LF, strict).find(u"\\n") != std::u16string::npos;
}

bool Process(char const * pszFile)
{
    std::u16string const strFile = Widen(pszFile);
    Gpx::Survey const survey = Gpx::SurveyFile(strFile);
    CSmartPtr<Gpx::CGpx> spGpx(new Gpx::CGpx);
    double const ms = Milliseconds([&] { spGpx->FromXmlFile(strFile.c_str(), ReadContext()); });

    std::printf("%s, written by %s, read in %.2f ms\n", pszFile, Narrow(spGpx->m_strCreator).c_str(), ms);
    CSerializationContext const ctx = FormContext(kForms[0], survey.foreignNamespaces);
    int const nKept = Gpx::SurveyOctets(spGpx->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx)).nElements;
    PrintSummary(Gpx::Summarize(*spGpx), survey, nKept);
    std::printf(
        "  %-16s %10s %10s %8s %10s %8s  %s\n", "form", "octets", "write ms", "MB/s", "read ms", "MB/s", "read back");
    bool bAgrees = true;
    for (Form const & form : kForms)
    {
        if (form.bStrict || !HoldsLineFeed(*spGpx, ctx))
            bAgrees = PrintForm(form, *spGpx, FormContext(form, survey.foreignNamespaces)) && bAgrees;
        else
            std::printf("  %-16s would lose line feeds\n", form.pszName);
    }
    return bAgrees;
}

/// Writes what a file holds as strict JSON and as XML, for other programs.
int Convert(char const * pszFile, char const * pszJsonFile, char const * pszXmlFile)
{
    CSmartPtr<Gpx::CGpx> spGpx(new Gpx::CGpx);
    spGpx->FromXmlFile(Widen(pszFile).c_str(), ReadContext());
    CSerializationContext const ctx = FormContext(kForms[0], Gpx::SurveyFile(Widen(pszFile)).foreignNamespaces);
    spGpx->ToJsonFile(Widen(pszJsonFile).c_str(), true, XmlEncoding_UTF8, EOLType_LF, ctx);
    spGpx->ToXmlFile(Widen(pszXmlFile).c_str(), true, false, XmlEncoding_UTF8, EOLType_LF, ctx);
    return 0;
}

} // namespace

int main(int argc, char ** argv)
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0)
    {
        std::fprintf(argc < 2 ? stderr : stdout,
            "usage: gpx FILE...\n"
            "       gpx --convert FILE JSON XML\n"
            "Reads GPX 1.1 files, plain or compressed, tells what is in them, and "
            "writes and reads them in every form; or writes one as JSON and XML.\n"
            "Exit: 0 all is well, 1 a file fails or comes back changed, 2 usage.\n");
        return argc < 2 ? 2 : 0;
    }
    int nResult = 0;
    for (int n = 1; n < argc; ++n)
    {
        try
        {
            if (argc == 5 && std::strcmp(argv[1], "--convert") == 0)
                return Convert(argv[2], argv[3], argv[4]);
            if (!Process(argv[n]))
                nResult = 1;
        }
        catch (CQzException const & failure)
        {
            std::fflush(stdout);
            std::fprintf(stderr, "%s: %s\n", argv[n], Explain(failure).c_str());
            nResult = 1;
        }
    }
    return nResult;
}
