#pragma once

#include <functional>

/// How long jobs take, against each other on a machine that others use as well.
namespace Timing
{

using Job = std::function<void()>;

/// How much is measured.
struct Effort
{
    int nPairs = 5;
    double sampleSeconds = 0.1;
};

struct Result
{
    double baseSeconds;
    double jobSeconds;
    /// Median of base by job, taken pair by pair.
    double ratio;
};

/// Times both in turn, in processor time of this thread, and gives the medians. A sample repeats its job until it has
/// lasted long enough.
Result Compare(Job const & base, Job const & job, Effort const & effort);

/// How much faster two threads do two jobs than one thread does: 2 at best. Each thread gets its own job.
double GainOfTwoThreads(Job const & first, Job const & second, Effort const & effort);

} // namespace Timing
