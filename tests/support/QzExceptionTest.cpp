#include "qzxmllib/support/QzException.h"

#include "tests/support/BigStack.h"
#include "tests/support/TestText.h"

#include <memory>

using namespace QzXmlLib16;

namespace
{

TEST(QzExceptionTest, ThePathStandsBehindTheMessageOnce)
{
    CQzValidationException const failure(u"m", u"/a/b");
    CQzException const copy = failure;
    CQzInvalidParamException const turned(copy);
    for (CQzException const * p : std::initializer_list<CQzException const *>{&failure, &copy, &turned})
    {
        EXPECT_EQ(Utf8(p->GetMessageW()), "m\nPath: /a/b");
        EXPECT_EQ(Utf8(p->GetPath()), "/a/b");
        EXPECT_EQ(Utf8(p->GetFullMessage()), "m\nPath: /a/b");
    }
    EXPECT_EQ(Utf8(CQzException(u"m", u"").GetMessageW()), "m");
}

TEST(QzExceptionTest, TheInnerFailureKeepsItsClassAndOutlivesTheCallers)
{
    auto pCause = std::make_unique<CQzInvalidValueException>(u"3", CQzOverFlowException(u"4"));
    CQzValidationException const middle(u"2", u"/p", *pCause);
    CQzException const outer(u"1", middle);
    pCause.reset();
    EXPECT_EQ(Utf8(outer.GetFullMessage()), "1\n2\nPath: /p\n3\n4");
    auto const * const pMiddle = dynamic_cast<CQzValidationException const *>(outer.GetInnerException());
    ASSERT_NE(pMiddle, nullptr);
    EXPECT_NE(dynamic_cast<CQzInvalidValueException const *>(pMiddle->GetInnerException()), nullptr);
    EXPECT_NE(dynamic_cast<CQzOverFlowException const *>(pMiddle->GetInnerException()->GetInnerException()), nullptr);
}

/// Chains are as long as objects are deep.
TEST(QzExceptionTest, LongChainsAreCopied)
{
    CQzException first(u"0");
    for (int n = 1; n < 3000; ++n)
        first = CQzException(u"n", first);
    OnStack([&first] { EXPECT_EQ(CQzException(first).GetFullMessage().size(), 2 * 3000u - 1); }, 64 * 1024);
}

TEST(QzExceptionTest, CopiesHaveChainsOfTheirOwn)
{
    CQzException first(u"a", CQzException(u"b", CQzInvalidStateException(u"c")));
    CQzException second;
    second = first;
    EXPECT_NE(first.GetInnerException(), second.GetInnerException());
    first = *first.GetInnerException(); // a part of its own chain
    EXPECT_EQ(Utf8(first.GetFullMessage()), "b\nc");
    CQzException const & same = first;
    first = same;
    EXPECT_EQ(Utf8(first.GetFullMessage()), "b\nc");
    EXPECT_EQ(Utf8(second.GetFullMessage()), "a\nb\nc");
}

template <class E, class... Args>
bool IsCaughtAsValidation(Args... args)
{
    try
    {
        throw E(args...);
    }
    catch (CQzValidationException const &)
    {
        return true;
    }
    catch (CQzException const & e)
    {
        // A clone made as the inner failure of another is of the thrown class.
        EXPECT_NE(dynamic_cast<E const *>(CQzException(u"", e).GetInnerException()), nullptr);
        return false;
    }
}

TEST(QzExceptionTest, HandlersSeeTheTree)
{
    EXPECT_TRUE((IsCaughtAsValidation<CQzInvalidValueException>(u"m")));
    EXPECT_TRUE((IsCaughtAsValidation<CQzInvalidNamespaceException>(u"m", u"/p")));
    EXPECT_FALSE((IsCaughtAsValidation<CQzInvalidStateException>(u"m")));
    EXPECT_FALSE((IsCaughtAsValidation<CQzInvalidParamException>(u"m")));
    EXPECT_FALSE((IsCaughtAsValidation<CQzOverFlowException>(u"m")));
}

} // namespace
