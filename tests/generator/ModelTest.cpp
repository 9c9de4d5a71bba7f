#include "tests/generator/SchemaFiles.h"

using namespace QzXmlGen;

namespace
{

struct Row
{
    char const * pszName;
    char const * pszSchema;
    /// Without the summary.
    char const * pszReport;
};

constexpr Row kRows[] = {
    {"SimpleKinds",
        "<xs:complexType name='A'><xs:sequence><xs:element name='a' type='xs:int'/><xs:element name='b' "
        "type='xs:positiveInteger' minOccurs='0'/><xs:element name='c' type='xs:date' maxOccurs='3'/><xs:element "
        "name='class' type='xs:anyURI' default='x'/></xs:sequence><xs:attribute name='a' type='xs:boolean' "
        "use='required'/><xs:attribute name='f' fixed='1'/></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_a: attribute boolean 1..1\n"
        "    m_f: attribute string 0..1, fixed \"1\"\n"
        "    m_a2: element i4 1..1\n"
        "    m_b: element integer 0..1\n"
        "    m_c: element date 1..3\n"
        "    m_class: element string 1..1, default \"x\"\n"},
    {"Enumerations",
        "<xs:simpleType name='Size'><xs:restriction base='xs:token'><xs:enumeration value='x-large'/><xs:enumeration "
        "value=''/></xs:restriction></xs:simpleType><xs:complexType name='A'><xs:sequence><xs:element name='s' "
        "type='t:Size'/><xs:element name='n'><xs:simpleType><xs:restriction base='xs:int'><xs:enumeration "
        "value='1'/></xs:restriction></xs:simpleType></xs:element></xs:sequence></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_s: element t::Size 1..1\n"
        "    m_n: element i4 1..1\n"},
    {"PatternsKeepTheSpelling",
        "<xs:complexType name='A'><xs:sequence><xs:element name='d'><xs:simpleType><xs:restriction "
        "base='xs:dateTime'><xs:pattern "
        "value='.*[0-9]'/></xs:restriction></xs:simpleType></xs:element></xs:sequence></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_d: element text 1..1\n"},
    {"ListsAndUnions",
        "<xs:simpleType name='L'><xs:list itemType='xs:int'/></xs:simpleType><xs:complexType name='A'><xs:attribute "
        "name='l' type='t:L'/><xs:attribute name='u'><xs:simpleType><xs:union memberTypes='xs:int "
        "t:L'/></xs:simpleType></xs:attribute></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_l: attribute string 0..1\n"
        "    m_u: attribute string 0..1\n"},
    {"SequencesDissolve",
        "<xs:complexType name='A'><xs:sequence><xs:sequence><xs:element name='a'/></xs:sequence><xs:sequence "
        "minOccurs='0'><xs:element name='b' minOccurs='0' type='xs:int'/></xs:sequence><xs:choice "
        "maxOccurs='unbounded'><xs:element name='c' type='xs:int'/></xs:choice></xs:sequence></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_a: tree  1..1\n"
        "    m_b: element i4 0..1\n"
        "    m_c: element i4 1..unbounded\n"},
    {"Groups",
        "<xs:complexType name='A'><xs:sequence><xs:sequence maxOccurs='unbounded'><xs:element name='a' "
        "type='xs:int'/><xs:element name='b' type='xs:int'/></xs:sequence><xs:choice><xs:element name='c' "
        "type='xs:int'/><xs:element name='d' type='xs:int' maxOccurs='2'/></xs:choice></xs:sequence></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_group: group t::CASequence 1..unbounded\n"
        "    m_choice: group t::CAChoice 1..1\n"
        "class t::CASequence: sequence, without an element of its own\n"
        "    m_a: element i4 1..1\n"
        "    m_b: element i4 1..1\n"
        "class t::CAChoice: choice, without an element of its own\n"
        "    m_c: element i4 1..1\n"
        "    m_group: group t::CAChoiceSequence 1..1\n"
        "class t::CAChoiceSequence: sequence, without an element of its own\n"
        "    m_d: element i4 1..2\n"},
    {"ChoiceAndAllAsContent",
        "<xs:complexType name='C'><xs:choice><xs:element name='a' type='xs:int'/><xs:element name='b' "
        "type='xs:int'/></xs:choice></xs:complexType><xs:complexType name='D'><xs:all><xs:element name='a' "
        "type='xs:int' minOccurs='0'/><xs:element name='b' type='xs:int'/></xs:all></xs:complexType>",
        "class t::CC: sequence\n"
        "    m_choice: group t::CCChoice 1..1\n"
        "class t::CCChoice: choice, without an element of its own\n"
        "    m_a: element i4 1..1\n"
        "    m_b: element i4 1..1\n"
        "class t::CD: all\n"
        "    m_a: element i4 0..1\n"
        "    m_b: element i4 1..1\n"},
    {"Extension",
        "<xs:complexType name='A' abstract='true'><xs:sequence><xs:element name='a' "
        "type='xs:int'/></xs:sequence><xs:attribute name='k'/></xs:complexType><xs:complexType "
        "name='B'><xs:complexContent><xs:extension base='t:A'><xs:sequence><xs:element name='a' "
        "type='xs:int'/></xs:sequence><xs:attribute "
        "name='l'/></xs:extension></xs:complexContent></xs:complexType><xs:element name='e' type='t:A'/>",
        "root t::E\n"
        "class t::CA: sequence, abstract\n"
        "    m_k: attribute string 0..1\n"
        "    m_a: element i4 1..1\n"
        "class t::CB: sequence, extends t::CA\n"
        "    m_l: attribute string 0..1\n"
        "    m_a2: element i4 1..1\n"},
    {"Restriction",
        "<xs:complexType name='A'><xs:sequence><xs:element name='a' type='xs:int' minOccurs='0'/><xs:element name='b' "
        "type='xs:int' maxOccurs='9'/></xs:sequence><xs:attribute name='k'/></xs:complexType><xs:complexType "
        "name='B'><xs:complexContent><xs:restriction base='t:A'><xs:sequence><xs:element name='a' "
        "type='xs:int'/><xs:element name='b' type='xs:int' maxOccurs='2'/></xs:sequence><xs:attribute name='k' "
        "use='required'/></xs:restriction></xs:complexContent></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_k: attribute string 0..1\n"
        "    m_a: element i4 0..1\n"
        "    m_b: element i4 1..9\n"
        "class t::CB: sequence, restricts t::CA\n"
        "    m_k: attribute string 1..1\n"
        "    m_a: element i4 1..1\n"
        "    m_b: element i4 1..2\n"},
    {"SimpleContent",
        "<xs:complexType name='A'><xs:simpleContent><xs:extension base='xs:decimal'><xs:attribute "
        "name='value'/></xs:extension></xs:simpleContent></xs:complexType><xs:complexType "
        "name='B'><xs:simpleContent><xs:extension base='t:A'><xs:attribute "
        "name='b'/></xs:extension></xs:simpleContent></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_value: attribute string 0..1\n"
        "    m_value2: text decimal\n"
        "class t::CB: sequence, extends t::CA\n"
        "    m_b: attribute string 0..1\n"},
    {"SubstitutionGroups",
        "<xs:complexType name='H'/><xs:complexType name='I'><xs:complexContent><xs:extension base='t:H'><xs:attribute "
        "name='i'/></xs:extension></xs:complexContent></xs:complexType><xs:element name='h' type='t:H' "
        "abstract='true'/><xs:element name='i' type='t:I' substitutionGroup='t:h'/><xs:element name='j' type='t:H' "
        "substitutionGroup='t:i2'/><xs:element name='i2' type='t:H' substitutionGroup='t:h'/><xs:element name='n' "
        "type='xs:decimal'/><xs:element name='m' type='xs:int' substitutionGroup='t:n'/><xs:complexType "
        "name='A'><xs:sequence><xs:element ref='t:h' maxOccurs='unbounded'/><xs:element "
        "ref='t:n'/></xs:sequence></xs:complexType>",
        "root t::H\n"
        "root t::I\n"
        "root t::J\n"
        "root t::I2\n"
        "root t::N\n"
        "root t::M\n"
        "class t::CH: sequence\n"
        "class t::CI: sequence, extends t::CH\n"
        "    m_i: attribute string 0..1\n"
        "class t::CHGroup: choice, without an element of its own\n"
        "    m_h: substitutes t::CH 1..1, 3 alternatives\n"
        "class t::CNGroup: choice, without an element of its own\n"
        "    m_n: element decimal 1..1\n"
        "    m_m: element i4 1..1\n"
        "class t::CA: sequence\n"
        "    m_h: group t::CHGroup 1..unbounded\n"
        "    m_n: group t::CNGroup 1..1\n"},
    {"TreesAndWildcards",
        "<xs:complexType name='M' mixed='true'><xs:sequence><xs:element "
        "name='b'/></xs:sequence></xs:complexType><xs:complexType name='A'><xs:sequence><xs:element name='m' "
        "type='t:M' maxOccurs='unbounded'/><xs:element name='any' minOccurs='0'/><xs:any namespace='##other' "
        "processContents='lax' maxOccurs='unbounded'/></xs:sequence><xs:anyAttribute namespace='urn:a urn:b' "
        "processContents='skip'/></xs:complexType>",
        "class t::CA: sequence\n"
        "    m_any: any attribute urn:a urn:b\n"
        "    m_m: tree  1..unbounded\n"
        "    m_any2: tree  0..1\n"
        "    m_any3: any element ##other 1..unbounded\n"
        "s.xsd:2:130: warning: wildcard in A: what stands there is not checked against its declarations\n"
        "s.xsd:2:198: warning: element m: its content is mixed: it is kept as a tree and not checked\n"},
    {"RecursionNilAndAnonymousTypes",
        "<xs:element name='node'><xs:complexType><xs:sequence><xs:element ref='t:node' minOccurs='0' "
        "maxOccurs='unbounded'/><xs:element name='part' nillable='true'><xs:complexType><xs:sequence><xs:element "
        "name='part' type='xs:int' nillable='true' "
        "minOccurs='0'/></xs:sequence></xs:complexType></xs:element></xs:sequence></xs:complexType></xs:element>",
        "root t::Node\n"
        "class t::CNode: sequence\n"
        "    m_node: child t::CNode 0..unbounded\n"
        "    m_part: child t::CNodePart 1..1, nillable\n"
        "class t::CNodePart: sequence\n"
        "    m_part: element i4 0..1, nillable\n"},
    {"WhatIsNotEnforced",
        "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' "
        "type='xs:int'/></xs:sequence></xs:complexType><xs:key name='k'><xs:selector xpath='t:a'/><xs:field "
        "xpath='.'/></xs:key></xs:element>",
        "root t::R\n"
        "class t::CR: sequence\n"
        "    m_a: element i4 1..1\n"
        "s.xsd:2:135: warning: identity constraint k: it is not enforced\n"},
};

class ModelTest : public testing::TestWithParam<Row>
{
};

TEST_P(ModelTest, Report)
{
    CSchemaFiles const files({{"s.xsd", Schema(GetParam().pszSchema)}});
    std::string strReport = files.Report({{files.Path("s.xsd")}, {}, {}});
    strReport.erase(strReport.rfind('\n', strReport.size() - 2) + 1);
    EXPECT_EQ(strReport, GetParam().pszReport);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ModelTest, testing::ValuesIn(kRows), [](auto const & row) { return std::string(row.param.pszName); });

} // namespace
