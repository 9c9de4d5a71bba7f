#include "examples/support/ElementTree.h"
#include "examples/support/Report.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

/// Reads any XML or Fast Infoset document into a tree of elements without classes of its own, and writes the tree in
/// every form of the library.

namespace
{

using namespace QzXmlLib16;

using Write = CBinaryData(CElement const & top, CSerializationContext const & ctx, CompressionType eCompression);

struct Form
{
    char const * pszName;
    Write * pfnWrite;
    CompressionType eCompression;
    /// Without namespaces nothing can be read back that is the same.
    bool bReadsBack;
};

CBinaryData WriteXml(CElement const & top, CSerializationContext const & ctx, CompressionType eCompression)
{
    // Indenting would add to the white space that the tree holds.
    return top.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx, eCompression);
}
CBinaryData WriteFastInfoset(CElement const & top, CSerializationContext const & ctx, CompressionType eCompression)
{
    return top.ToFastInfosetStream(FInfoDecl_None, ctx, eCompression);
}
CBinaryData WriteJson(CElement const & top, CSerializationContext const & ctx, CompressionType eCompression)
{
    return top.ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, ctx, eCompression);
}

constexpr Form kForms[] = {
    {"XML", &WriteXml, CompressionType_None, true},
    {"XML, gzip", &WriteXml, CompressionType_GZip, true},
    {"Fast Infoset", &WriteFastInfoset, CompressionType_None, true},
    {"FI, gzip", &WriteFastInfoset, CompressionType_GZip, true},
    {"JSON", &WriteJson, CompressionType_None, false},
    {"JSON, gzip", &WriteJson, CompressionType_GZip, false},
};

/// What a document is made of.
struct Counts
{
    int nElements = 0;
    int nAttributes = 0;
    std::map<std::u16string, int> elementsOfNamespace;
};

Counts CountNodes(CElement & top)
{
    Counts counts;
    std::vector<CElement *> open{&top};
    while (!open.empty())
    {
        CElement * const pElement = open.back();
        open.pop_back();
        ++counts.nElements;
        counts.nAttributes += pElement->GetAttributes()->GetCount();
        ++counts.elementsOfNamespace[pElement->GetNamespace()];
        for (CElement & child : *pElement->GetChildElements())
            open.push_back(&child);
    }
    return counts;
}

/// Writes the tree in one form, reads it back and prints a line of the table. False if the copy differs.
bool PrintForm(Form const & form, CElement & top, CSerializationContext const & ctx)
{
    CBinaryData data;
    double writeMs = 0;
    try
    {
        writeMs = Milliseconds([&] { data = form.pfnWrite(top, ctx, form.eCompression); });
    }
    catch (CQzException const & failure)
    {
        // Octets that compression would not shorten are refused, as those of a very small file.
        if (form.eCompression == CompressionType_None)
            throw;
        std::printf("  %-16s %s\n", form.pszName, Explain(failure).c_str());
        return true;
    }
    std::printf("  %-16s %10u %10.2f", form.pszName, data.GetLength(), writeMs);
    if (!form.bReadsBack)
    {
        std::printf(" %10s  namespaces are lost\n", "");
        return true;
    }
    CSmartPtr<CElement> spCopy(new CRootElement);
    double const readMs = Milliseconds([&] { spCopy->FromXmlStream(data, ctx); });
    bool const bAgrees = AgreeElements(top, *spCopy);
    std::printf(" %10.2f  %s\n", readMs, bAgrees ? "same" : "DIFFERS");
    return bAgrees;
}

bool Process(char const * pszFile)
{
    std::u16string const strFile = Widen(pszFile);
    CSerializationContext ctx;
    // For readers other than this library.
    ctx.GetFIContext().SetStrict(true);
    ctx.GetJsonContext().SetSupportRoundtrip(JsonRoundTrip_Attributes);
    ctx.GetJsonContext().SetStrict(true);
    CSmartPtr<CElement> spTop(new CRootElement);
    double const ms = Milliseconds([&] { spTop->FromXmlFile(strFile.c_str(), ctx); });

    Counts const counts = CountNodes(*spTop);
    std::printf("%s, root %s, read in %.2f ms: %d elements, %d attributes\n", pszFile, Narrow(spTop->GetName()).c_str(),
        ms, counts.nElements, counts.nAttributes);
    for (auto const & [strNamespace, nElements] : counts.elementsOfNamespace)
        std::printf("  %6d of %s\n", nElements, strNamespace.empty() ? "no namespace" : Narrow(strNamespace).c_str());
    std::printf("  %-16s %10s %10s %10s  %s\n", "form", "octets", "write ms", "read ms", "read back");
    bool bAgrees = true;
    for (Form const & form : kForms)
        bAgrees = PrintForm(form, *spTop, ctx) && bAgrees;
    return bAgrees;
}

} // namespace

int main(int argc, char ** argv)
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0)
    {
        std::fprintf(argc < 2 ? stderr : stdout,
            "usage: anyxml FILE...\n"
            "Reads XML or Fast Infoset documents, plain or compressed, and writes and reads them in every form.\n"
            "JSON is written at round-trip level 1, which does not keep namespaces.\n"
            "Exit: 0 all is well, 1 a file fails or comes back changed, 2 usage.\n");
        return argc < 2 ? 2 : 0;
    }
    int nResult = 0;
    for (int n = 1; n < argc; ++n)
    {
        try
        {
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
