#include "qzxmllib/document/FileBinaryStream.h"
#include "qzxmllib/document/FileTextStream.h"
#include "qzxmllib/document/StringBuffer.h"
#include "qzxmllib/document/TextStream.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/document/XmlTextWriter.h"
#include "qzxmllib/support/PlatformFileInternal.h"
#include "tests/support/TestFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/stat.h>

using namespace QzXmlLib16;

namespace
{

/// Pieces of all lengths in blocks of all small sizes, with the text looked at on the way.
TEST(StringBufferTest, PiecesJoinInOrder)
{
    for (std::uint32_t nBlockSize = 0; nBlockSize < 12; ++nBlockSize)
    {
        CStringBuffer buffer(nBlockSize);
        std::u16string strExpected;
        for (std::size_t nPiece = 0; nPiece < 70; ++nPiece)
        {
            std::u16string strPiece;
            for (std::size_t nAt = 0; nAt < nPiece; ++nAt)
                strPiece += static_cast<char16_t>(u'a' + (nAt + nPiece) % 26);
            buffer.Append(strPiece);
            buffer.Append(u'.');
            buffer.Append(u"..");
            strExpected += strPiece + u"...";
            EXPECT_EQ(nPiece % 20 == 19 ? buffer.GetText() : strExpected, strExpected);
        }
        EXPECT_EQ(buffer.GetLength(), strExpected.size());
        EXPECT_EQ(buffer.TakeText(), strExpected);
        EXPECT_EQ(buffer.GetLength(), 0u);
    }
}

TEST(StringBufferTest, BlocksJoinAndGoOn)
{
    CStringBuffer buffer;
    EXPECT_EQ(buffer.GetText(), std::u16string());
    buffer.Append(std::u16string(4095, u'a'));
    EXPECT_EQ(buffer.GetBlockCount(), 1u);
    buffer.Append(u'b');
    EXPECT_EQ(buffer.GetBlockCount(), 2u);
    EXPECT_EQ(buffer.GetText(), std::u16string(4095, u'a') + u'b');
    EXPECT_EQ(buffer.GetBlockCount(), 1u);
    buffer.Append(u'c');
    EXPECT_EQ(buffer.GetLength(), 4097u);
    EXPECT_EQ(buffer.GetText(), std::u16string(4095, u'a') + u"bc");
    buffer.Append(u'c');
    buffer.Reset();
    EXPECT_EQ(buffer.GetBlockCount(), 0u);
    buffer.Append(std::u16string(u"x\0y", 3));
    buffer.Append(u'\0');
    EXPECT_EQ(buffer.GetLength(), 2u);
    buffer.Set(u"new");
    EXPECT_EQ(buffer.GetText(), std::u16string(u"new"));
}

TEST(TextStreamTest, OctetsByEncoding)
{
    for (XmlEncoding const eEncoding : {XmlEncoding_UTF8, XmlEncoding_UTF16, XmlEncoding_UTF16NoDecl})
    {
        CTextStream stream(eEncoding);
        stream.Write(std::u16string(u"a\xE9"));
        stream.Write(u'\0');
        stream.Write(u"behind");
        EXPECT_EQ(
            TextOf(stream.GetBinary()), eEncoding == XmlEncoding_UTF8 ? "a\xC3\xA9" : std::string("a\0\xE9\0", 4));
    }
    CTextStream stream;
    stream.Write(u"x");
    ExpectThrows<CQzException>(
        [&] { stream.GetBinary(); }, u"Unknown Encoding, select UTF-8 (contact our support team)");
    EXPECT_EQ(stream.GetText(), std::u16string(u"x"));
}

/// Writes in stretches that put every border between the halves of a pair, flushing as a writer does.
TEST(TextStreamTest, TextAndOctetsStayWholeAcrossFlushes)
{
    std::u16string const strPiece = u"<\xE9\U0001F600\x20AC>";
    std::string const strPieceOctets = "<\xC3\xA9\xF0\x9F\x98\x80\xE2\x82\xAC>";
    std::u16string strText;
    std::string strOctets;
    CTextStream stream(XmlEncoding_UTF8);
    for (int nPiece = 0; nPiece < 20000; ++nPiece)
    {
        for (char16_t const c : strPiece)
        {
            stream.Write(c);
            if (stream.NeedsFlush())
                stream.Flush();
        }
        strText += strPiece;
        strOctets += strPieceOctets;
        EXPECT_TRUE(nPiece != 5000 || stream.GetText() == strText);
    }
    EXPECT_EQ(stream.GetLength(), strText.size());
    EXPECT_EQ(TextOf(stream.GetBinary()), strOctets);
    EXPECT_EQ(stream.GetText(), strText);
    EXPECT_EQ(TextOf(stream.TakeBinary()), strOctets);
    EXPECT_EQ(stream.GetLength(), 0u);

    stream.Write(strText);
    stream.Flush();
    stream.Write(u"end");
    EXPECT_EQ(TextOf(stream.GetBinary()), strOctets + "end");
    EXPECT_EQ(stream.TakeText(), strText + u"end");
}

/// A large output makes the thread expect another one, not one in each of many streams.
TEST(TextStreamTest, ManyStreamsAfterALargeOutput)
{
    {
        CTextStream large(XmlEncoding_UTF8);
        CXmlTextWriter writer(&large);
        writer.StartDocument();
        writer.WriteStartElement(u"a", u"");
        writer.WriteText(std::u16string(40000000, u'x'), ItemType_string);
        writer.WriteEndElement();
        writer.EndDocument();
        EXPECT_EQ(large.TakeBinary().GetLength(), 40000008u);
    }
    auto const addressSpace = []
    {
        std::size_t nPages = 0;
        std::ifstream("/proc/self/statm") >> nPages;
        return nPages * 4096;
    };
    std::size_t const nBefore = addressSpace();
    std::vector<std::unique_ptr<CTextStream>> streams;
    for (int n = 0; n < 20; ++n)
    {
        streams.push_back(std::make_unique<CTextStream>(XmlEncoding_UTF8));
        CXmlTextWriter writer(streams.back().get());
        writer.StartDocument();
        writer.WriteStartElement(u"a", u"");
        writer.WriteEndElement();
        writer.EndDocument();
    }
    EXPECT_LT(addressSpace(), nBefore + 100000000);
}

TEST(TextStreamTest, WhatCannotBeEncodedWaitsForTheQuestion)
{
    CTextStream stream(XmlEncoding_UTF8);
    std::u16string strText(5000, u'a');
    stream.Write(strText);
    stream.Flush();
    strText += u"b\xD83Dz" + std::u16string(20000, u'c');
    stream.Write(strText.data() + 5000, strText.size() - 5000);
    stream.Flush();
    ExpectThrows<CQzException>([&] { stream.GetBinary(); },
        u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D83D] at position [5001].");
    EXPECT_EQ(stream.GetText(), strText);

    stream.Open();
    stream.Write(u"ab");
    stream.Write(u'\0');
    stream.Flush();
    stream.Write(u"c");
    EXPECT_EQ(TextOf(stream.GetBinary()), "ab");
}

TEST(FileStreamTest, MarkAndContent)
{
    CTestFile file;
    for (XmlEncoding const eEncoding : {XmlEncoding_UTF8, XmlEncoding_UTF16, XmlEncoding_UTF16NoDecl})
    {
        bool const bUtf8 = eEncoding == XmlEncoding_UTF8;
        std::string const strMark = bUtf8 ? "" : "\xFF\xFE";
        CFileTextStream stream(file.Name(), eEncoding);
        stream.Open();
        stream.Close();
        EXPECT_EQ(file.Content(), strMark);
        stream.Open();
        stream.Write(u"x");
        stream.Flush();
        stream.Write(u"x");
        stream.Close();
        stream.Close();
        EXPECT_EQ(file.Content(), strMark + (bUtf8 ? "xx" : std::string("x\0x\0", 4)));
        unsigned char const abyData[] = {0, 1};
        CFileBinaryStream(file.Name(), eEncoding, CBinaryData(abyData, 2)).WriteToFile();
        EXPECT_EQ(file.Content(), strMark + std::string("\0\1", 2));
    }
}

TEST(FileStreamTest, PairAcrossFlushes)
{
    CTestFile file;
    CFileTextStream stream(file.Name(), XmlEncoding_UTF8);
    stream.Open();
    stream.Write(u"a\xD83D");
    stream.Flush();
    stream.Write(u'\xDE00');
    stream.Close();
    EXPECT_EQ(file.Content(), "a\xF0\x9F\x98\x80");
    stream.Open();
    stream.Write(u"ab");
    stream.Flush();
    stream.Write(u"c\xD83D");
    ExpectThrows<CQzException>(
        [&] { stream.Close(); }, u"Failed to convert text to UTF-8. Invalid surrogate [0x0000D83D] at position [3].");
}

TEST(FileStreamTest, FilesThatCannotBeWritten)
{
    unsigned char const byData = 1;
    for (auto const & [pszName, nError] : {std::pair(u"/nonexistent/file", ENOENT), {u"/dev/full", ENOSPC}})
    {
        std::u16string const strName = pszName;
        std::u16string const strMessage =
            FormatString(u"Failed to write data to the file [%s] error [0x%08X]", strName, nError);
        ExpectThrows<CQzException>([&] { CFileTextStream(strName, XmlEncoding_UTF16).Open(); }, strMessage);
        CFileBinaryStream binary(strName, XmlEncoding_UTF8, CBinaryData(&byData, 1));
        ExpectThrows<CQzException>([&] { binary.WriteToFile(); }, strMessage);
    }
}

int g_nWritesLeft = 0;

/// Each of the writes of a document fails in turn; the failure shows at the next flush or at close, once.
TEST(FileStreamTest, AnyWriteCanFail)
{
    CTestFile file;
    CPlatformFileCalls calls;
    calls.pfnWrite = [](int nFile, void const * pOctets, std::size_t nOctets, off_t nOffset)
    {
        if (g_nWritesLeft-- > 0)
            return ::pwrite(nFile, pOctets, nOctets, nOffset);
        errno = EDQUOT;
        return static_cast<ssize_t>(-1);
    };
    SetPlatformFileCalls(&calls);
    for (int nGood = 0; nGood <= 3; ++nGood)
    {
        g_nWritesLeft = nGood;
        CFileTextStream stream(file.Name(), XmlEncoding_UTF8);
        stream.Open();
        std::u16string const strMessage = ResultOf(
            [&]
            {
                for (int nPart = 0; nPart < 3; ++nPart)
                {
                    stream.Write(u"part ");
                    stream.Flush();
                }
                stream.Close();
                return std::u16string(u"no failure");
            });
        EXPECT_EQ(strMessage,
            nGood == 3 ? u"no failure" : FormatString(u"Failed to write data to the file. Error [0x%08X]", EDQUOT));
        EXPECT_EQ(file.Content(), std::string("part part part ", static_cast<std::size_t>(nGood) * 5));
        EXPECT_NO_THROW(stream.Close());
    }
    SetPlatformFileCalls(nullptr);
}

/// Counts the calls of the system down to the one that fails, with an error number or by a short count.
struct Staged
{
    static bool Fails() { return nLeft-- == 0 && (errno = nError, true); }
    static ssize_t Write(int nFile, void const * pOctets, std::size_t nOctets, off_t nOffset)
    {
        if (!Fails())
            return ::pwrite(nFile, pOctets, nOctets, nOffset);
        return nError != 0 ? -1 : ::pwrite(nFile, pOctets, nOctets / 2, nOffset);
    }
    static ssize_t Read(int nFile, void * pOctets, std::size_t nOctets, off_t nOffset)
    {
        if (!Fails())
            return ::pread(nFile, pOctets, nOctets, nOffset);
        return nError != 0 ? -1 : ::pread(nFile, pOctets, nOctets / 2, nOffset);
    }
    static int Close(int nFile)
    {
        int const nResult = ::close(nFile);
        return Fails() && nError != 0 ? (errno = nError, -1) : nResult;
    }
    static int Rename(char const * pszFrom, char const * pszTo)
    {
        return Fails() && nError != 0 ? -1 : ::rename(pszFrom, pszTo);
    }

    static inline int nLeft = 0;
    static inline int nError = 0;
};

/// Whatever call fails while a file is written, it holds the old octets or the new ones, and nothing else is left.
TEST(FileStreamTest, TheOldFileStandsUntilTheNewOneIsComplete)
{
    std::string const strFolder = testing::TempDir() + "qzxml" + std::to_string(::getpid());
    std::filesystem::create_directory(strFolder);
    std::string const strFile = strFolder + "/file";
    std::string const strLink = strFolder + "/link";
    std::filesystem::create_symlink("file", strLink);
    CPlatformFileCalls const calls{&Staged::Read, &Staged::Write, &Staged::Close, &Staged::Rename};
    SetPlatformFileCalls(&calls);
    constexpr uid_t kOwner = 12345;
    bool bAllGood = false;
    for (int nCall = 0; !bAllGood; ++nCall)
    {
        bAllGood = true;
        for (int const nError : {0, EINTR, ENOSPC, EIO, EDQUOT})
        {
            std::ofstream(strFile) << "old";
            ASSERT_TRUE(::geteuid() != 0 || ::chown(strFile.c_str(), kOwner, kOwner) == 0);
            ASSERT_EQ(::chmod(strFile.c_str(), 0640), 0);
            Staged::nError = nError;
            Staged::nLeft = nCall;
            std::u16string const strResult = ResultOf(
                [&]
                {
                    CFileBinaryStream(Wide(strLink), XmlEncoding_UTF16, Octets("fresh")).WriteToFile();
                    return std::u16string();
                });
            std::ifstream file(strFile, std::ios::binary);
            std::string const strContent(std::istreambuf_iterator<char>(file), {});
            EXPECT_EQ(strContent, strResult.empty() ? "\xFF\xFE"
                                                      "fresh"
                                                    : "old")
                << nCall << ' ' << nError;
            EXPECT_TRUE(strResult.empty() || (nError != 0 && nError != EINTR)) << nCall << ' ' << Utf8(strResult);
            struct stat status = {};
            EXPECT_EQ(::stat(strFile.c_str(), &status), 0);
            EXPECT_EQ(status.st_mode & 0777u, 0640u);
            EXPECT_TRUE(::geteuid() != 0 || (status.st_uid == kOwner && status.st_gid == kOwner)) << nCall;
            bAllGood = bAllGood && Staged::nLeft >= 0;
        }
        EXPECT_LT(nCall, 20);
        std::filesystem::directory_iterator const entries(strFolder);
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 2);
    }
    SetPlatformFileCalls(nullptr);

    // What is no regular file is written as it is, and not read.
    std::string const strPipe = strFolder + "/pipe";
    ASSERT_EQ(::mkfifo(strPipe.c_str(), 0600), 0);
    CXmlDocument document;
    ExpectThrows<CQzException>([&] { document.Load(Wide(strPipe).c_str()); },
        u"The file [" + Wide(strPipe) + u"] is a pipe, a socket or a device and is not read");
    ExpectThrows<CQzException>(
        [&] { document.Load(u"/dev/null"); }, u"The file [/dev/null] is a pipe, a socket or a device and is not read");
    ExpectThrows<CQzException>(
        [&] { document.Load(nullptr); }, FormatString(u"Failed to open the file [] Error [0x%08x]", ENOENT));
    int const nReader = ::open(strPipe.c_str(), O_RDONLY | O_NONBLOCK);
    CFileBinaryStream(Wide(strPipe), XmlEncoding_UTF8, Octets("piped")).WriteToFile();
    char aGot[8] = {};
    EXPECT_EQ(::read(nReader, aGot, sizeof aGot), 5);
    ::close(nReader);
    EXPECT_STREQ(aGot, "piped");
    std::filesystem::remove_all(strFolder);
}

} // namespace
