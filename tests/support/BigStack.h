#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <pthread.h>

#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
constexpr std::size_t kStack = 8u << 20;
#else
constexpr std::size_t kStack = 256u << 20;
#endif

/// Runs the function on a thread with a stack of its own.
inline void OnStack(std::function<void()> run, std::size_t nStack = kStack)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, nStack), 0);
    pthread_t thread;
    auto * const pfnStart = +[](void * pRun) -> void *
    {
        (*static_cast<std::function<void()> *>(pRun))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, pfnStart, &run), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
