#include "generator/naming/Identifiers.h"

#include <gtest/gtest.h>

using namespace QzXmlGen;

TEST(IdentifiersTest, NamesOfSchemasBecomeNamesOfCpp)
{
    struct Row
    {
        char const * pszText;
        char const * pszIdentifier;
    };
    constexpr Row kRows[] = {{"plain", "plain"}, {"x-large", "x_large"}, {"2x", "_2x"}, {"", "Empty"}, {"a--b", "a_b"},
        {"__x", "_x"}, {"_Upper", "Upper"}, {"\xC3\xA9t\xC3\xA9", "\xC3\xA9t\xC3\xA9"}, {"1.0", "_1_0"}, {"+", "_"}};
    for (Row const & row : kRows)
        EXPECT_EQ(ToIdentifier(row.pszText), row.pszIdentifier) << row.pszText;
    for (char const * pszReserved : {"class", "EOF", "xor_eq", "BUFSIZ", "and", "minor", "co_await", "std"})
        EXPECT_EQ(AvoidReserved(pszReserved), std::string(pszReserved) + '_');
    EXPECT_EQ(AvoidReserved("Class"), "Class");
    EXPECT_EQ(Capitalize("_x"), "_X");
    EXPECT_EQ(Capitalize("\xC3\xA9"), "\xC3\xA9");
}

TEST(IdentifiersTest, NamespacesBecomeNamespaces)
{
    struct Row
    {
        char const * pszUri;
        char const * pszNamespace;
    };
    constexpr Row kRows[] = {{"http://www.topografix.com/GPX/1/1", "gpx"}, {"urn:a:Invoice-2", "invoice_2"},
        {"http://www.w3.org/2000/09/xmldsig#", "xmldsig"},
        {"urn:iso:std:iso:20022:tech:xsd:camt.053.001.02", "camt_053_001_02"}, {"urn:class", "class_"},
        {"http://example.com/v2", "example_com"}, {"", ""}, {"123", "_123"}};
    for (Row const & row : kRows)
        EXPECT_EQ(ToCppNamespace(row.pszUri), row.pszNamespace) << row.pszUri;
}
