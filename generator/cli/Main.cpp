#include "generator/cli/Report.h"
#include "generator/model/ModelBuilder.h"
#include "generator/naming/Namer.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>
#include <xercesc/util/PlatformUtils.hpp>

/// Reads XML schemas as the class generator does and reports what their classes will hold and what they will not.

namespace
{

using namespace QzXmlGen;

constexpr int kBadSchema = 1;
constexpr int kBadUsage = 2;

/// The parser's library is up while one lives.
class CParserPlatform
{
public:
    CParserPlatform() { xercesc::XMLPlatformUtils::Initialize(); }
    CParserPlatform(CParserPlatform const &) = delete;
    CParserPlatform & operator=(CParserPlatform const &) = delete;
    ~CParserPlatform() { xercesc::XMLPlatformUtils::Terminate(); }
};

struct Options
{
    LoadOptions load;
    ModelOptions model;
    NamingOptions naming;
    bool bStrict = false;
};

/// "A=B", split at the last equals sign, as a URI may hold one.
std::map<std::string, std::string> SplitPairs(std::vector<std::string> const & pairs)
{
    std::map<std::string, std::string> result;
    for (std::string const & strPair : pairs)
    {
        std::size_t const nEqual = strPair.rfind('=');
        if (nEqual == std::string::npos)
            throw CLI::ValidationError(strPair, "is not of the form A=B");
        result[strPair.substr(0, nEqual)] = strPair.substr(nEqual + 1);
    }
    return result;
}

int Run(Options const & options)
{
    CDiagnostics diagnostics;
    CSchemaSet const schemas(options.load, diagnostics);
    Model model;
    if (schemas.GetModel() != nullptr)
    {
        model = CModelBuilder(schemas, options.model, diagnostics).Build();
        CNamer(schemas, options.naming, diagnostics).Name(model);
    }
    for (Diagnostic const & diagnostic : diagnostics.GetAll())
        std::cerr << ToString(diagnostic) << '\n';
    if (diagnostics.HasErrors())
        return kBadSchema;
    PrintReport(std::cout, model);
    return options.bStrict && !model.losses.empty() ? kBadSchema : 0;
}

} // namespace

int main(int argc, char ** argv)
{
    Options options;
    std::vector<std::string> locations;
    std::vector<std::string> namespaces;
    std::vector<std::string> roots;
    std::vector<std::string> asText;
    CLI::App app(
        "Checks XML schemas and reports the classes that bind their documents: their names, what they hold, and "
        "what they neither enforce nor keep. Nothing is fetched from a network.\n"
        "Exit: 0 all is well, 1 a schema is wrong, 2 usage.");
    app.set_version_flag("--version", QZXMLGEN_VERSION);
    app.add_option("SCHEMA", options.load.schemas, "schema documents")->required()->check(CLI::ExistingFile);
    app.add_option("--location", locations, "the file of a namespace or location, as urn:x=x.xsd")->type_name("A=B");
    app.add_option("--catalog", options.load.catalogs, "an XML Catalog, as catalog.xml")->check(CLI::ExistingFile);
    app.add_option("--root", roots, "only what this element reaches, as Invoice or {urn:x}Invoice")->type_name("NAME");
    app.add_option("--string", asText, "a simple type whose values keep their spelling, as {urn:x}Rate")
        ->type_name("TYPE");
    app.add_option("--namespace-map", namespaces, "the C++ namespace of an XML namespace, as urn:x=shop::x")
        ->type_name("URI=NAME");
    app.add_flag("--strict", options.bStrict, "what is neither enforced nor kept is an error");
    try
    {
        app.parse(argc, argv);
        options.load.locations = SplitPairs(locations);
        options.naming.namespaces = SplitPairs(namespaces);
    }
    catch (CLI::ParseError const & failure)
    {
        return app.exit(failure) == 0 ? 0 : kBadUsage;
    }
    options.model.roots.insert(roots.begin(), roots.end());
    options.model.asText.insert(asText.begin(), asText.end());
    try
    {
        CParserPlatform const platform;
        return Run(options);
    }
    catch (std::exception const & failure)
    {
        std::fprintf(stderr, "qzxmlgen: %s\n", failure.what());
        return kBadSchema;
    }
}
