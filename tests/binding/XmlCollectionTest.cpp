#include "tests/support/Listener.h"
#include "tests/support/TableClass.h"

#include <functional>
#include <random>
#include <utility>

using namespace QzXmlLib16;

namespace
{

class XmlCollectionTest : public testing::Test
{
protected:
    std::string Order() const
    {
        std::string strOrder;
        for (int i = 0; i < m_spCol->GetCount(); ++i)
            strOrder += Utf8(static_cast<CTableClass *>(m_spCol->GetNodeAtIndex(i)->m_spItem.Get())->GetElementName());
        return strOrder;
    }
    CTableClass * New(char16_t const * name) { return new CTableClass(m_schema, name); }

    CTableSchema m_schema;
    CSmartPtr<CTableCol> m_spCol{new CTableCol(m_schema, u"c", 2, 3)};
};

TEST_F(XmlCollectionTest, EveryPlaceToAdd)
{
    CTableClass * const pB = New(u"b");
    m_spCol->AppendItem(pB);
    m_spCol->PrependItem(New(u"a"));
    m_spCol->AddAfterItem(pB, New(u"d"));
    m_spCol->AddBeforeItem(pB, New(u"x"));
    m_spCol->AddItemAt(4, New(u"e"));
    m_spCol->AddItemAt(3, New(u"c"));
    m_spCol->AddAfterItem(nullptr, New(u"0"));
    m_spCol->AddBeforeItem(nullptr, New(u"9"));
    EXPECT_EQ(Order(), "0axbcde9");
    m_spCol->Remove(2);
    m_spCol->Remove(6);
    m_spCol->Remove(0);
    EXPECT_EQ(Order(), "abcde");
    ExpectThrows<CQzInvalidParamException>([&] { m_spCol->Remove(5); }, u"Index 5 is out of range, use 0 - 4");
    CSmartPtr<CTableClass> const spLate(New(u"z"));
    ExpectThrows<CQzInvalidParamException>([&] { m_spCol->AddItemAt(6, spLate); }, u"Index out of range");
    ExpectThrows<CQzInvalidParamException>(
        [&] { m_spCol->AddAfterItem(spLate, New(u"y")); }, u"The object was not found in the collection");
    EXPECT_EQ(Order(), "abcde");
    m_spCol->Clear();
    ExpectThrows<CQzInvalidParamException>([&] { m_spCol->Remove(0); }, u"Index 0 is out of range, use 0 - -1");
}

/// Listeners that change the collection they hear of.
TEST_F(XmlCollectionTest, ListenersMayChangeTheCollection)
{
    for (char16_t const * name : {u"a", u"b", u"c"})
        m_spCol->AppendItem(New(name));
    CListener listener;
    m_spCol->AddEventListener(&listener);
    bool bActs = true;
    auto const once = [&](std::function<void()> act)
    {
        bActs = true;
        listener.m_action = [&bActs, act]
        {
            if (std::exchange(bActs, false))
                act();
        };
    };
    once([&] { m_spCol->Remove(1); }); // the item that is about to go
    ExpectThrows<CQzInvalidParamException>([&] { m_spCol->Remove(1); }, u"The object was not found in the collection");
    EXPECT_EQ(Order(), "ac");
    once([&] { m_spCol->Clear(); }); // with the memory of the node
    ExpectThrows<CQzInvalidParamException>([&] { m_spCol->Remove(1); }, u"The object was not found in the collection");
    EXPECT_EQ(Order(), "");

    for (bool const bAfter : {true, false})
    {
        CTableClass * const pPlace = New(u"p");
        m_spCol->AppendItem(pPlace);
        once([&] { m_spCol->Remove(0); });
        CSmartPtr<CTableClass> const spNew(New(u"n"));
        ExpectThrows<CQzInvalidParamException>([&]
            { bAfter ? m_spCol->AddAfterItem(pPlace, spNew) : m_spCol->AddBeforeItem(pPlace, spNew); },
            u"The object was not found in the collection");
        EXPECT_EQ(Order(), "");
    }

    listener.m_action = nullptr;
    m_spCol->AppendItem(New(u"x"));
    bActs = true;
    listener.m_action = [&]
    {
        if (m_spCol->GetCount() == 0 && std::exchange(bActs, false))
            m_spCol->AppendItem(New(u"again")), bActs = true;
    };
    ExpectThrows<CQzInvalidStateException>(
        [&] { m_spCol->Clear(); }, u"The collection can not be cleared, a listener adds items again and again");
    m_spCol->RemoveEventListener(&listener);
}

TEST_F(XmlCollectionTest, KeepsItsOrderWhileItGrowsAndShrinks)
{
    std::mt19937 generator(11);
    auto const random = [&] { return static_cast<unsigned>(generator()); };
    std::string strExpected;
    for (int nStep = 0; nStep < 4000; ++nStep)
    {
        // Grows and shrinks in turn, past a hundred items and down to none.
        auto const nCount = static_cast<unsigned>(strExpected.size());
        bool const bGrows = nStep / 400 % 2 == 0;
        if (nCount == 0 || random() % 10 < (bGrows ? 7u : 2u))
        {
            unsigned const nAt = random() % (nCount + 1);
            char16_t const szName[] = {static_cast<char16_t>(u'a' + random() % 26), 0};
            m_spCol->AddItemAt(static_cast<int>(nAt), New(szName));
            strExpected.insert(nAt, 1, static_cast<char>(szName[0]));
        }
        else if (random() % 200 == 0)
        {
            m_spCol->Clear();
            strExpected.clear();
        }
        else
        {
            unsigned const nAt = random() % nCount;
            m_spCol->Remove(static_cast<int>(nAt));
            strExpected.erase(nAt, 1);
        }
        if (nStep % 16 == 0)
        {
            ASSERT_EQ(Order(), strExpected) << nStep;
        }
    }
}

TEST_F(XmlCollectionTest, LimitsAreTestedOnDemand)
{
    CSerializationContext ctx;
    m_spCol->Add();
    ExpectThrows<CQzValidationException>(
        [&] { m_spCol->ValidateCount(ctx); }, u"The Minimum number of [c] elements allowed in this collection is 2");
    m_spCol->Add();
    m_spCol->ValidateCount(ctx);
    m_spCol->Add();
    m_spCol->Add();
    ExpectThrows<CQzValidationException>(
        [&] { m_spCol->ValidateCount(ctx); }, u"The Maximum number of [c] elements allowed in this collection is 3");
    EXPECT_FALSE(m_spCol->IsValidCount(ctx));
    ctx.SetIgnoreInvalidCollectionCounts(true);
    m_spCol->ValidateCount(ctx);
    EXPECT_TRUE(m_spCol->IsValidCount(ctx));
}

TEST_F(XmlCollectionTest, EventsComeInOrder)
{
    CListener listener;
    m_spCol->AddEventListener(&listener);
    m_spCol->Add();
    EXPECT_EQ(listener.m_strLog, "add added change ");
    EXPECT_EQ(listener.m_pSource, m_spCol.Get());
    m_spCol->Add();
    m_spCol->Add();
    listener.m_strLog.clear();
    m_spCol->Clear();
    EXPECT_EQ(listener.m_strLog, "remove removed change remove removed change remove removed change ");
    m_spCol->Add();
    listener.m_action = [] { throw CQzException(u"refused"); };
    EXPECT_THROW(m_spCol->Add(), CQzException);
    EXPECT_THROW(m_spCol->Remove(0), CQzException);
    EXPECT_EQ(m_spCol->GetCount(), 1);
    listener.m_action = nullptr;
    listener.m_strLog.clear();
    m_spCol->AddEventListener(&listener);
    m_spCol->Remove(0);
    EXPECT_EQ(listener.m_strLog, "remove remove removed removed change change ");
    m_spCol->RemoveEventListener(&listener);
    m_spCol->Add();
    EXPECT_EQ(listener.m_strLog, "remove remove removed removed change change ");
}

TEST_F(XmlCollectionTest, ListenersMayLeaveDuringAnEvent)
{
    CListener first;
    CListener second;
    m_spCol->AddEventListener(&first);
    m_spCol->AddEventListener(&second);
    first.m_action = [&]
    {
        m_spCol->RemoveEventListener(&first);
        m_spCol->RemoveEventListener(&second);
    };
    m_spCol->Add();
    EXPECT_EQ(first.m_strLog, "add ");
    EXPECT_EQ(second.m_strLog, "");
}

TEST_F(XmlCollectionTest, LastReleaseFiresWithTheSourceAlive)
{
    CListener listener;
    m_spCol->AddEventListener(&listener);
    m_spCol->Add();
    // Taking and dropping a count of the source inside the event must not destroy it a second time.
    listener.m_action = [&] { CSmartPtr<CXmlObjectBase> const spHeld(listener.m_pSource); };
    m_spCol = nullptr;
    EXPECT_EQ(listener.m_strLog, "add added change remove removed change ");
}

TEST_F(XmlCollectionTest, ItemsOutliveTheCollection)
{
    CSmartPtr<CTableClass> const spItem(New(u"a"));
    m_spCol->AppendItem(spItem);
    m_spCol = nullptr;
    EXPECT_EQ(spItem->AddRef(), 2);
    EXPECT_EQ(spItem->Release(), 1);
}

TEST_F(XmlCollectionTest, HasNoTargetNamespace)
{
    ExpectThrows<CQzException>([&] { m_spCol->ToXml(); },
        u"CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)");
}

} // namespace
