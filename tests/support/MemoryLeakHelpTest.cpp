#include "qzxmllib/support/MemoryLeakHelp.h"

#include "tests/support/TestText.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <memory>
#include <thread>
#include <type_traits>
#include <unistd.h>

using testing::AllOf;
using testing::HasSubstr;

namespace
{

class Monitored : public CInstanceMonitor
{
public:
    Monitored() : CInstanceMonitor(u"CMonitored%s") {}
};

TEST(InstanceMonitorTest, CountsLiveAndTotal)
{
    {
        Monitored const first;
        EXPECT_EQ(LineOf("CMonitored%s"), "--> CMonitored%s = 1/1");
        Monitored second;
        Monitored const copy(first);
        second = copy;
        EXPECT_EQ(LineOf("CMonitored%s"), "--> CMonitored%s = 3/3");
    }
    EXPECT_EQ(LineOf("CMonitored%s"), "    CMonitored%s = 0/3");
    std::string const strState = Utf8(CInstanceMonitor::DumpState());
    EXPECT_EQ(strState.find("Instances of classes still in existence/Total Number of instances created\n"), 0u);
    EXPECT_NE(strState.back(), '\n');
}

TEST(InstanceMonitorTest, NamesCountByContent)
{
    char16_t szName[] = u"CNameOne";
    CInstanceMonitor const first(szName);
    CInstanceMonitor const same(std::u16string(szName).c_str());
    szName[5] = u'T'; // the same buffer with another name
    CInstanceMonitor const other(szName);
    EXPECT_EQ(LineOf("CNameOne"), "--> CNameOne = 2/2");
    EXPECT_EQ(LineOf("CNameTne"), "--> CNameTne = 1/1");
}

TEST(InstanceMonitorTest, ObjectsMoveBetweenThreads)
{
    std::unique_ptr<CInstanceMonitor> pObject;
    std::thread([&] { pObject = std::make_unique<CInstanceMonitor>(u"CThreaded"); }).join();
    EXPECT_EQ(LineOf("CThreaded"), "--> CThreaded = 1/1");
    std::thread([&] { CInstanceMonitor const copy(*pObject); }).join();
    pObject.reset();
    EXPECT_EQ(LineOf("CThreaded"), "    CThreaded = 0/2");
}

TEST(InstanceMonitorTest, CountsManyNames)
{
    std::vector<std::unique_ptr<CInstanceMonitor>> objects;
    for (int i = 0; i < 400; ++i)
        objects.push_back(std::make_unique<CInstanceMonitor>(QzXmlLib16::FormatString(u"CMany%d", i % 200).c_str()));
    objects.resize(350);
    EXPECT_EQ(LineOf("CMany149"), "--> CMany149 = 2/2");
    EXPECT_EQ(LineOf("CMany150"), "--> CMany150 = 1/2");
}

std::u16string g_strPieces;
std::size_t g_nLongest = 0;

/// Writes to standard error what it received, whenever a text of the tracker is complete.
void Listen(char16_t const * piece)
{
    std::u16string_view const text(piece);
    g_nLongest = std::max(g_nLongest, text.size());
    g_strPieces.append(text);
    if (text != u"\n")
        return;
    std::string const strOut = Utf8(g_strPieces) + (g_nLongest == 128 ? "longest 128" : "other length");
    static_cast<void>(!::write(STDERR_FILENO, strOut.data(), strOut.size()));
}

TEST(InstanceMonitorDeathTest, CleanupForgetsWhatItCounted)
{
    auto const run = []
    {
        auto pOld = std::make_unique<CInstanceMonitor>(u"CCleaned");
        auto pOlder = std::make_unique<CInstanceMonitor>(u"CCleaned");
        CInstanceMonitor::Cleanup();
        bool bGood = LineOf("CCleaned").empty();
        CInstanceMonitor const fresh(u"CCleaned");
        pOld.reset();
        bGood = bGood && LineOf("CCleaned") == "--> CCleaned = 1/1";
        pOlder.reset();
        bGood = bGood && LineOf("CCleaned") == "--> CCleaned = 1/1";
        return bGood ? 0 : 1;
    };
    EXPECT_EXIT(std::exit(run()), testing::ExitedWithCode(0), "");
}

TEST(InstanceMonitorDeathTest, ReportsToTheSinkWhenTheLibraryGoesDown)
{
    auto const run = []
    {
        // exit does not unwind, so these are alive when the library goes down.
        CInstanceMonitor const alive(u"CLeaked");
        CInstanceMonitor const longName(std::u16string(500, u'L').c_str());
        SetDebugOutput(Listen);
        std::exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0),
        AllOf(HasSubstr("Dumping Class instances\nInstances of classes still in existence/"),
            HasSubstr("--> CLeaked = 1/1"), HasSubstr("\nlongest 128")));
}

TEST(InstanceMonitorDeathTest, ReportsToStandardErrorIfAsked)
{
    // Pairs at even and at odd places, so that the border of two pieces cuts one of them.
    std::u16string strName;
    for (int i = 0; i < 140; ++i)
        strName += i == 70 ? u"x\U0001F600" : u"\U0001F600";
    auto const run = [&]
    {
        CInstanceMonitor const named(strName.c_str());
        std::exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // starts the program anew, with the variable set
    setenv("QZXMLLIB_DEBUG_OUTPUT", "1", 1);
    EXPECT_EXIT(run(), testing::ExitedWithCode(0),
        AllOf(HasSubstr("Starting to track Class instances\n"), HasSubstr("--> " + Utf8(strName) + " = 1/1")));
    unsetenv("QZXMLLIB_DEBUG_OUTPUT");
    GTEST_FLAG_SET(death_test_style, "fast");
}

TEST(CriticalSectionTest, TheHolderEntersAgain)
{
    CQZCriticalSection lock;
    lock.Enter();
    lock.Enter();
    int nStep = 1;
    std::thread other(
        [&]
        {
            lock.Enter();
            EXPECT_EQ(nStep, 2);
            lock.Leave();
        });
    lock.Leave();
    nStep = 2;
    lock.Leave();
    other.join();
    static_assert(!std::is_copy_constructible_v<CQZCriticalSection>);
}

} // namespace
