#pragma once

#include <cstddef>
#include <memory>
#include <utility>

namespace QzXmlLib16
{

/// What a reader or writer has built up, kept by the thread for the next one: documents of one kind follow each other.
/// IsLarge of T tells that it is too much to be kept.
template <class T>
class CThreadSpare
{
public:
    static std::unique_ptr<T> Take()
    {
        T * const pSpare = std::exchange(t_pSpare, nullptr);
        return std::unique_ptr<T>(pSpare != nullptr ? pSpare : new T);
    }
    static void GiveBack(std::unique_ptr<T> sp) noexcept
    {
        struct Cleaner
        {
            ~Cleaner()
            {
                t_bThreadEnds = true;
                delete std::exchange(t_pSpare, nullptr);
            }
        };
        if (t_bThreadEnds || t_pSpare != nullptr || sp->IsLarge())
            return;
        static thread_local Cleaner const t_cleaner;
        t_pSpare = sp.release();
    }

private:
    static inline thread_local T * t_pSpare = nullptr;
    static inline thread_local bool t_bThreadEnds = false;
};

/// The most names that are worth keeping for the next document.
constexpr std::size_t kMostNamesKept = 512;

} // namespace QzXmlLib16
