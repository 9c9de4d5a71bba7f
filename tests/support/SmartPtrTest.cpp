#include "qzxmllib/support/SmartPtr.h"

#include <gtest/gtest.h>
#include <utility>

using namespace QzXmlLib16;

namespace
{

struct Counted
{
    virtual ~Counted() { ++s_nDeleted; }
    void AddRef() { ++nCount; }
    void Release()
    {
        if (--nCount == 0)
            delete this;
    }
    int nCount = 0;
    static int s_nDeleted;
};
int Counted::s_nDeleted = 0;

struct Derived : Counted
{
    CSmartPtr<Counted> spNext;
};

TEST(SmartPtrTest, TheLastCountDeletes)
{
    Counted::s_nDeleted = 0;
    {
        CSmartPtr<Counted> sp = new Counted;
        CSmartPtr<Counted> spCopy = sp;
        EXPECT_EQ(sp->nCount, 2);
        CSmartPtr<Counted> spMoved = std::move(spCopy);
        EXPECT_EQ(sp->nCount, 2);
        spMoved = spMoved.Get(); // the object already held, by its only other count
        sp = nullptr;
        EXPECT_EQ(spMoved->nCount, 1);
        CSmartPtr<Counted> & spSame = spMoved;
        spMoved = spSame;
        spMoved = std::move(spSame);
        EXPECT_EQ(spMoved->nCount, 1);
        EXPECT_EQ(Counted::s_nDeleted, 0);
    }
    EXPECT_EQ(Counted::s_nDeleted, 1);
}

TEST(SmartPtrTest, AnObjectMayHoldTheOnlyCountOfItsSuccessor)
{
    Counted::s_nDeleted = 0;
    CSmartPtr<Counted> sp = new Derived;
    static_cast<Derived *>(sp.Get())->spNext = new Derived;
    sp = static_cast<Derived *>(sp.Get())->spNext;
    EXPECT_EQ(Counted::s_nDeleted, 1);
    EXPECT_EQ(sp->nCount, 1);
}

TEST(SmartPtrTest, ComparesWithPointersOfAllKinds)
{
    CSmartPtr<Derived> const spDerived = new Derived;
    CSmartPtr<Counted> spBase = spDerived;
    CSmartPtr<Counted> const spNull;
    Counted const * const pConst = spBase;
    Counted * const pBase = spBase;
    Derived * const pDerived = spDerived;
    EXPECT_TRUE(spBase == pConst && pConst == spBase && spBase == pBase && pBase == spBase);
    EXPECT_TRUE(spBase == spDerived && spDerived == spBase && pDerived == spDerived && spBase == spBase);
    EXPECT_TRUE(spNull == nullptr && nullptr == spNull && spBase != nullptr && nullptr != spBase);
    EXPECT_TRUE(spNull != spBase && spNull != spDerived && spNull != pBase && !spNull && spBase);
    EXPECT_TRUE(spNull == 0 && 0 == spNull && spBase != 0 && spNull == NULL);
    EXPECT_FALSE(spBase != spDerived || spBase != pConst || pBase != spBase);
    spBase = CSmartPtr<Derived>();
    EXPECT_TRUE(spBase == spNull);
}

} // namespace
