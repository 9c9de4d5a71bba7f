#pragma once

#include <cstdint>
#include <functional>

/// Octets by which the peak of resident memory grows while a job runs, above what is resident after its preparation and
/// a small job of its kind, which brings the program itself into memory. All run in child processes of their own, so
/// that nothing else counts and no memory is left over from before. A child that fails gives -1.
std::int64_t PeakGrowth(
    std::function<void()> const & prepare, std::function<void()> const & warmUp, std::function<void()> const & job);
