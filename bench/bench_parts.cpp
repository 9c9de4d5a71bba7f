#include "qzxmllib/QzXmlLib16.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <string>

/// Speed of single parts: values, the instance monitor and the escaper.

namespace
{

using namespace QzXmlLib16;

void ValueFromString(benchmark::State & state, ItemType eType, char16_t const * pszText)
{
    std::u16string const strText = pszText;
    for (auto _ : state)
    {
        QzVariant value;
        value.FromString(strText, eType, CWhitespaceUtils::WhitespaceRule_Collapse);
        benchmark::DoNotOptimize(value);
    }
}

void ValueToString(benchmark::State & state, ItemType eType, char16_t const * pszText)
{
    QzVariant value;
    value.FromString(pszText, eType, CWhitespaceUtils::WhitespaceRule_Collapse);
    for (auto _ : state)
        benchmark::DoNotOptimize(value.ToString(u""));
}

#define QZ_VALUE(name, type, text)                                                                                     \
    BENCHMARK_CAPTURE(ValueFromString, name, type, text);                                                              \
    BENCHMARK_CAPTURE(ValueToString, name, type, text)
QZ_VALUE(i4, ItemType_i4, u"-1234567");
QZ_VALUE(ui8, ItemType_ui8, u"12345678901234567890");
QZ_VALUE(r8, ItemType_r8, u"46.852312");
QZ_VALUE(boolean, ItemType_boolean, u"true");
QZ_VALUE(string, ItemType_string, u"Handle with care: glass and ceramics");

class CMonitored : private CInstanceMonitor
{
public:
    CMonitored() : CInstanceMonitor(u"CMonitored") {}
};

void Monitor(benchmark::State & state)
{
    for (auto _ : state)
    {
        CMonitored object;
        benchmark::DoNotOptimize(object);
    }
}
BENCHMARK(Monitor)->Threads(1)->Threads(2)->UseRealTime();

/// What the monitor is measured by: two increments and a decrement of atomics that no other thread touches.
void OwnAtomics(benchmark::State & state)
{
    struct alignas(128) Counters
    {
        std::atomic<std::int64_t> nLive{0};
        std::atomic<std::int64_t> nTotal{0};
    } counters;
    for (auto _ : state)
    {
        counters.nLive.fetch_add(1, std::memory_order_relaxed);
        counters.nTotal.fetch_add(1, std::memory_order_relaxed);
        counters.nLive.fetch_sub(1, std::memory_order_relaxed);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(OwnAtomics)->Threads(1)->Threads(2)->UseRealTime();

/// Text of 64 units with as many characters to escape as the argument tells.
void Escaper(benchmark::State & state)
{
    std::u16string strText(64, u'x');
    for (int n = 0; n < state.range(0); ++n)
        strText[static_cast<std::size_t>(n) * 64 / static_cast<std::size_t>(state.range(0))] = u'&';
    constexpr int kTexts = 1000;
    for (auto _ : state)
    {
        CTextStream stream(XmlEncoding_UTF8);
        CXmlTextWriter writer(&stream);
        writer.StartDocument();
        writer.SetFormat(false);
        writer.WriteStartElement(u"a", u"");
        for (int n = 0; n < kTexts; ++n)
            writer.WriteText(strText, ItemType_string);
        writer.WriteEndElement();
        writer.EndDocument();
        benchmark::DoNotOptimize(stream.GetBinary());
    }
    state.SetBytesProcessed(state.iterations() * kTexts * 64);
}
BENCHMARK(Escaper)->Arg(0)->Arg(1)->Arg(8)->Arg(64);

} // namespace

BENCHMARK_MAIN();
