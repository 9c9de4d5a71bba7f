#include "bench/PeakMemory.h"

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace
{

std::int64_t ResidentOctets()
{
    long nTotal = 0;
    long nResident = 0;
    if (std::FILE * const pFile = std::fopen("/proc/self/statm", "r"))
    {
        if (std::fscanf(pFile, "%ld %ld", &nTotal, &nResident) != 2)
            nResident = 0;
        std::fclose(pFile);
    }
    return std::int64_t{nResident} * sysconf(_SC_PAGESIZE);
}

std::int64_t PeakOctets()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{usage.ru_maxrss} * 1024;
}

/// Runs a function in a child and gives its answer, or -1 if the child fails.
std::int64_t InChild(std::function<std::int64_t()> const & call)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return -1;
    pid_t const child = fork();
    if (child == 0)
    {
        std::int64_t nAnswer = -1;
        try
        {
            nAnswer = call();
        }
        catch (...)
        {
            _exit(1);
        }
        _exit(write(pipeEnds[1], &nAnswer, sizeof nAnswer) == sizeof nAnswer ? 0 : 1);
    }
    close(pipeEnds[1]);
    std::int64_t nAnswer = -1;
    if (child < 0 || read(pipeEnds[0], &nAnswer, sizeof nAnswer) != sizeof nAnswer)
        nAnswer = -1;
    close(pipeEnds[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return nAnswer;
}

} // namespace

std::int64_t PeakGrowth(
    std::function<void()> const & prepare, std::function<void()> const & warmUp, std::function<void()> const & job)
{
    // The peak of a process begins anew when it is forked, so the job gets a child of the one that is prepared.
    return InChild(
        [&]
        {
            prepare();
            malloc_trim(0);
            return InChild(
                [&]
                {
                    // The pages of the program itself are touched anew in a child; they are not what is measured.
                    warmUp();
                    std::int64_t const nBefore = ResidentOctets();
                    job();
                    return PeakOctets() - nBefore;
                });
        });
}
