#include "tests/generator/SchemaFiles.h"

using namespace QzXmlGen;

namespace
{

constexpr char kOther[] = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:o'>"
                          "<xs:simpleType name='O'><xs:restriction base='xs:string'><xs:enumeration value='a'/>"
                          "</xs:restriction></xs:simpleType></xs:schema>";

std::string Importing(std::string const & strImport)
{
    return Schema(strImport + "<xs:element name='e' type='o:O' xmlns:o='urn:o'/>");
}

TEST(SchemaSetTest, ImportsAreFoundByEveryRoad)
{
    std::string const strRemote = "<xs:import namespace='urn:o' schemaLocation='http://example.com/o.xsd'/>";
    CSchemaFiles const files({{"near.xsd", Importing("<xs:import namespace='urn:o' schemaLocation='o.xsd'/>")},
        {"far.xsd", Importing(strRemote)}, {"nowhere.xsd", Importing("<xs:import namespace='urn:o'/>")},
        {"o.xsd", kOther},
        {"catalog.xml", "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'>"
                        "<rewriteSystem systemIdStartString='http://example.com/' rewritePrefix='./'/></catalog>"}});
    std::string const strExpected = "root t::E\n1 root elements, 0 classes, 1 enumerations, 0 constructs that are not "
                                    "enforced or kept\n";
    EXPECT_EQ(files.Report({{files.Path("near.xsd")}, {}, {}}), strExpected);
    EXPECT_EQ(files.Report({{files.Path("far.xsd")}, {{"urn:o", files.Path("o.xsd")}}, {}}), strExpected);
    EXPECT_EQ(
        files.Report({{files.Path("far.xsd")}, {{"http://example.com/o.xsd", files.Path("o.xsd")}}, {}}), strExpected);
    EXPECT_EQ(files.Report({{files.Path("far.xsd")}, {}, {files.Path("catalog.xml")}}), strExpected);
    EXPECT_EQ(files.Report({{files.Path("nowhere.xsd"), files.Path("o.xsd")}, {}, {}}), strExpected);
    EXPECT_EQ(files.Report({{files.Path("far.xsd")}, {}, {}}),
        "far.xsd:2:73: error: the imported schema \"http://example.com/o.xsd\" is remote, and nothing is fetched: name "
        "a "
        "file with --location or --catalog\n");
}

TEST(SchemaSetTest, ErrorsNameTheirPlace)
{
    CSchemaFiles const files({{"broken.xsd", "<xs:schema\n>"}, {"other.xsd", "<schema/>"},
        {"include.xsd", Schema("<xs:include schemaLocation='none.xsd'/>")},
        {"type.xsd", Schema("\n<xs:element name='e' type='t:None'/>")}});
    EXPECT_EQ(files.Report({{files.Path("include.xsd")}, {}, {}}),
        "include.xsd:2:40: error: the included schema \"none.xsd\" is not found\n");
    EXPECT_EQ(files.Report({{files.Path("other.xsd")}, {}, {}}),
        "other.xsd:1:10: error: the root element is not xs:schema\n");
    for (auto const & [pszFile, pszStart] :
        {std::pair("broken.xsd", "broken.xsd:2:2: error: "), {"type.xsd", "type.xsd:3:37: error: "}})
        EXPECT_EQ(files.Report({{files.Path(pszFile)}, {}, {}}).substr(0, std::string(pszStart).size()), pszStart);
}

/// A schema without a namespace takes that of the one that includes it, and documents may include each other.
TEST(SchemaSetTest, ChameleonsAndCycles)
{
    CSchemaFiles const files(
        {{"a.xsd", Schema("<xs:include schemaLocation='b.xsd'/><xs:element name='e' type='t:B'/>")},
            {"b.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:include schemaLocation='b.xsd'/>"
                      "<xs:complexType name='B'><xs:attribute name='k'/></xs:complexType></xs:schema>"}});
    EXPECT_EQ(files.Report({{files.Path("a.xsd")}, {}, {}}),
        "root t::E\nclass t::CB: sequence\n    m_k: attribute string 0..1\n1 root elements, 1 classes, 0 enumerations, "
        "0 "
        "constructs that are not enforced or kept\n");
}

} // namespace
