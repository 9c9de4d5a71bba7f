#include "qzxmllib/document/QzZip.h"

#include "qzxmllib/binding/SerializationContext.h"
#include "tests/document/TreeText.h"

#include <cstring>

using namespace QzXmlLib16;

namespace
{

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
    std::string const strLong = Packed(Repeated(400000), CompressionType_GZip);
    EXPECT_TRUE(Unpacked(strGZip + strLong.substr(0, strLong.size() - 3)) == strPlain);
    EXPECT_EQ(Unpacked("x"), "x");
    EXPECT_EQ(Unpacked("<a/>"), "<a/>");
    EXPECT_EQ(Unpacked(TextOf(OctetsOfHex("1F8B0800000000000403 03000000000000000000"))), "");
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
        EXPECT_THROW(CQzZip::Compress(data, eType), CQzException);
        EXPECT_EQ(TextOf(data), "few");
    }
    // A form as long as the octets fits.
    EXPECT_EQ(Packed(std::string(11, 'x'), CompressionType_ZLib).size(), 11u);
    EXPECT_EQ(Packed(std::string(23, 'x'), CompressionType_GZip).size(), 23u);
}

TEST(QzZipTest, CompressesABufferInPlace)
{
    for (CompressionType const eType : {CompressionType_None, CompressionType_GZip})
    {
        std::string const strText(1000, 'x');
        unsigned long nOctets = static_cast<unsigned long>(strText.size());
        auto * pOctets = new unsigned char[nOctets];
        std::copy(strText.begin(), strText.end(), pOctets);
        CQzZip::Compress(&pOctets, &nOctets, eType);
        std::unique_ptr<unsigned char[]> const spOctets(pOctets);
        CBinaryData const data(pOctets, static_cast<std::uint32_t>(nOctets));
        EXPECT_EQ(TextOf(data), eType == CompressionType_None ? strText : Packed(strText, eType));
    }
}

TEST(QzZipTest, ObeysTheLimit)
{
    std::string const strXml = "<a>" + std::string(100000, 'x') + "</a>";
    std::string const strPacked = Packed(strXml, CompressionType_GZip);
    CSerializationContext ctx;
    CXmlDocument doc(ctx);
    auto const load = [&](std::size_t nLimit)
    {
        CReadLimits limits;
        limits.nMaxInflatedOctets = nLimit;
        ctx.SetReadLimits(limits);
        return LoadText(doc, strPacked);
    };
    EXPECT_EQ(load(strXml.size()).size(), strXml.size() - 3);
    EXPECT_EQ(load(strXml.size() - 1), "failed: The decompressed data exceed the limit of 100006 bytes.");
    EXPECT_EQ(load(0).size(), strXml.size() - 3);
}
