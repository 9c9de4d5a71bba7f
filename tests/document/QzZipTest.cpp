#include "qzxmllib/document/QzZip.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/document/XmlDocument.h"
#include "tests/document/TreeText.h"
#include "tests/support/TestText.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

using namespace QzXmlLib16;

namespace
{

constexpr char kEmptyGZip[] = "1F 8B 08 00 00 00 00 00 04 03 03 00 00 00 00 00 00 00 00 00";

std::string Packed(std::string const & strPlain, CompressionType eType)
{
    CBinaryData data = Octets(strPlain);
    CQzZip::Compress(data, eType);
    return TextOf(data);
}

/// What the array form of Decompress makes of the octets.
std::string Unpacked(std::string const & strOctets)
{
    auto * pData = new unsigned char[strOctets.size()];
    std::memcpy(pData, strOctets.data(), strOctets.size());
    unsigned long nLength = strOctets.size();
    CQzZip::Decompress(&pData, &nLength);
    std::string strPlain(reinterpret_cast<char const *>(pData), nLength);
    delete[] pData;
    return strPlain;
}

std::string Repeated(std::size_t nOctets)
{
    std::string strOut;
    while (strOut.size() < nOctets)
        strOut += "<item>" + std::to_string(strOut.size() % 977) + "</item>";
    strOut.resize(nOctets);
    return strOut;
}

} // namespace

TEST(QzZipTest, ComesBackWhateverTheLength)
{
    for (CompressionType const eType : {CompressionType_GZip, CompressionType_ZLib})
    {
        // The sizes at which a chunk of output is just filled are among them.
        for (std::size_t const nOctets : {200u, 65535u, 65536u, 65537u, 196608u, 3000000u})
        {
            std::string const strPlain = Repeated(nOctets);
            std::string const strPacked = Packed(strPlain, eType);
            EXPECT_LT(strPacked.size(), strPlain.size());
            EXPECT_EQ(strPacked.substr(0, 2), eType == CompressionType_GZip ? "\x1F\x8B" : "\x78\x01");
            EXPECT_TRUE(Unpacked(strPacked) == strPlain) << nOctets;
        }
    }
}

TEST(QzZipTest, TakesOnlyWholeStreams)
{
    std::string const strPlain = Repeated(500);
    std::string const strOther = Repeated(300);
    std::string const strGZip = Packed(strPlain, CompressionType_GZip);
    std::string const strZLib = Packed(strPlain, CompressionType_ZLib);
    std::string const strMember = Packed(strOther, CompressionType_GZip);
    for (std::size_t n = 0; n < strGZip.size(); ++n)
        EXPECT_EQ(Unpacked(strGZip.substr(0, n)), strGZip.substr(0, n));
    EXPECT_EQ(Unpacked(strGZip + strMember), strPlain + strOther);
    EXPECT_EQ(Unpacked(strGZip + strMember + "junk"), strPlain + strOther);
    EXPECT_EQ(Unpacked(strGZip + strMember.substr(0, strMember.size() - 1)), strPlain);
    EXPECT_EQ(Unpacked(strZLib + strMember), strPlain);
    EXPECT_EQ(Unpacked("x"), "x");
    EXPECT_EQ(Unpacked("<a/>"), "<a/>");
    EXPECT_EQ(Unpacked(TextOf(OctetsOfHex(kEmptyGZip))), "");
}

TEST(QzZipTest, DropsALongBrokenMemberWhole)
{
    std::string const strPlain = Repeated(70000);
    std::string const strLong = Packed(Repeated(400000), CompressionType_GZip);
    EXPECT_TRUE(Unpacked(Packed(strPlain, CompressionType_GZip) + strLong.substr(0, strLong.size() - 3)) == strPlain);
}

TEST(QzZipTest, CompressesInPlaceOrNotAtAll)
{
    CBinaryData empty;
    CQzZip::Compress(empty, CompressionType_GZip);
    EXPECT_EQ(empty.GetLength(), 0u);

    CBinaryData data = Octets("few");
    CQzZip::Compress(data, CompressionType_None);
    CQzZip::Compress(data, static_cast<CompressionType>(3));
    EXPECT_EQ(TextOf(data), "few");
    for (CompressionType const eType : {CompressionType_GZip, CompressionType_ZLib})
    {
        try
        {
            CQzZip::Compress(data, eType);
            ADD_FAILURE() << "nothing was thrown";
        }
        catch (CQzException const & e)
        {
            EXPECT_EQ(Utf8(e.GetMessageW()).substr(0, 38), "Failed to compress data. [Error Code: ");
        }
        EXPECT_EQ(TextOf(data), "few");
    }
    // A form as long as the octets fits.
    EXPECT_EQ(Packed(std::string(11, 'x'), CompressionType_ZLib).size(), 11u);
    EXPECT_EQ(Packed(std::string(23, 'x'), CompressionType_GZip).size(), 23u);
}

TEST(QzZipTest, ObeysTheLimit)
{
    std::string const strXml = "<a>" + std::string(100000, 'x') + "</a>";
    std::string const strPacked = Packed(strXml, CompressionType_GZip);
    CSerializationContext ctx;
    CReadLimits limits;
    CXmlDocument doc(ctx);
    limits.nMaxInflatedOctets = strXml.size();
    ctx.SetReadLimits(limits);
    EXPECT_EQ(LoadText(doc, strPacked).size(), strXml.size() - 3);
    limits.nMaxInflatedOctets = strXml.size() - 1;
    ctx.SetReadLimits(limits);
    EXPECT_EQ(LoadText(doc, strPacked), "failed: The decompressed data exceed the limit of 100006 bytes.");
    limits.nMaxInflatedOctets = 0;
    ctx.SetReadLimits(limits);
    EXPECT_EQ(LoadText(doc, strPacked).size(), strXml.size() - 3);
}
