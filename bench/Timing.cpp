#include "bench/Timing.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <future>
#include <thread>
#include <vector>

namespace Timing
{

namespace
{

double Seconds(Job const & job)
{
    auto const start = std::chrono::steady_clock::now();
    job();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Seconds that the processor spent on this thread. Unlike the time on the wall they do not count what other programs
/// do meanwhile.
double ThreadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Seconds of one run, as the mean of a sample.
double Sample(Job const & job, double sampleSeconds)
{
    double const start = ThreadSeconds();
    double seconds = 0;
    int nRuns = 0;
    do
    {
        job();
        ++nRuns;
        seconds = ThreadSeconds() - start;
    } while (seconds < sampleSeconds);
    return seconds / nRuns;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::size_t const n = values.size() / 2;
    return values.size() % 2 != 0 ? values[n] : (values[n - 1] + values[n]) / 2;
}

} // namespace

Result Compare(Job const & base, Job const & job, Effort const & effort)
{
    std::vector<double> bases;
    std::vector<double> jobs;
    std::vector<double> ratios;
    // The first runs fill caches and pages and are not counted.
    base();
    job();
    for (int n = 0; n < effort.nPairs; ++n)
    {
        bases.push_back(Sample(base, effort.sampleSeconds));
        jobs.push_back(Sample(job, effort.sampleSeconds));
        ratios.push_back(bases.back() / jobs.back());
    }
    return {Median(bases), Median(jobs), Median(ratios)};
}

double GainOfTwoThreads(Job const & first, Job const & second, Effort const & effort)
{
    int nRuns = 1;
    double const seconds = Seconds(first);
    if (seconds < effort.sampleSeconds)
        nRuns = static_cast<int>(effort.sampleSeconds / seconds) + 1;
    auto const repeat = [nRuns](Job const & job)
    {
        for (int n = 0; n < nRuns; ++n)
            job();
    };
    std::vector<double> gains;
    for (int n = 0; n < effort.nPairs; ++n)
    {
        double const alone = Seconds(
            [&]
            {
                repeat(first);
                repeat(second);
            });
        // The other thread has its memory before the time begins, as the first one has.
        std::promise<void> ready;
        std::promise<void> start;
        std::promise<void> done;
        std::thread other(
            [&]
            {
                second();
                ready.set_value();
                start.get_future().wait();
                repeat(second);
                done.set_value();
            });
        ready.get_future().wait();
        double const together = Seconds(
            [&]
            {
                start.set_value();
                repeat(first);
                done.get_future().wait();
            });
        other.join();
        gains.push_back(alone / together);
    }
    return Median(gains);
}

} // namespace Timing
