#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

/// Loads libraries at run time and calls RoundTrip of the last.
/// usage: load LIBRARY...
int main(int argc, char ** argv)
{
    void * pLibrary = nullptr;
    for (int n = 1; n < argc; ++n)
    {
        pLibrary = ::dlopen(argv[n], RTLD_NOW | RTLD_GLOBAL);
        if (pLibrary == nullptr)
        {
            std::fprintf(stderr, "%s\n", ::dlerror());
            return EXIT_FAILURE;
        }
    }
    auto * const pfnRoundTrip = reinterpret_cast<int (*)()>(::dlsym(pLibrary, "RoundTrip"));
    return pfnRoundTrip != nullptr ? pfnRoundTrip() : EXIT_FAILURE;
}
