#pragma once

#include "qzxmllib/support/ThreadMemory.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <utility>

namespace QzXmlLib16
{

/// What a reader or writer has built up and a thread keeps for the next one: documents of one kind follow each other.
class IThreadKept
{
public:
    virtual ~IThreadKept() = default;
    /// About how much memory it holds.
    virtual std::size_t CountOctets() const noexcept = 0;
};

/// One place for each kind of thing that is kept.
enum ThreadKept
{
    ThreadKept_XmlWriter,
    ThreadKept_JsonWriter,
    ThreadKept_FastInfosetWriter,
    ThreadKept_Names,
    ThreadKept_Count
};

/// What the thread keeps of a kind, or null. The caller owns it.
std::unique_ptr<IThreadKept> TakeKept(ThreadKept eKind) noexcept;
/// Keeps it if the limit of the thread allows, in place of spare blocks if need be.
void GiveBackKept(ThreadKept eKind, std::unique_ptr<IThreadKept> sp) noexcept;

/// The T that the thread has kept, or a new one.
template <class T>
std::unique_ptr<T> TakeFromThread(ThreadKept eKind)
{
    std::unique_ptr<T> sp(static_cast<T *>(TakeKept(eKind).release()));
    return sp != nullptr ? std::move(sp) : std::make_unique<T>();
}

/// Gives a T to the thread for its next read or write. While a failure is on its way it is dropped: what was
/// interrupted may be half done.
template <class T>
void GiveBackToThread(ThreadKept eKind, std::unique_ptr<T> sp) noexcept
{
    if (std::uncaught_exceptions() == 0)
        GiveBackKept(eKind, std::move(sp));
}

} // namespace QzXmlLib16
