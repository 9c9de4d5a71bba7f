#pragma once

#include "qzxmllib/support/Export.h"

#include <cstdint>

namespace QzXmlLib16Data
{

/// Number of a metadata entry. No two entries of a process ever have the same, also not one after the other at one
/// place in memory; an entry that is copied or assigned to gets a new one.
class CEntryId
{
public:
    CEntryId() noexcept : m_nId(Next()) {}
    CEntryId(CEntryId const &) noexcept : m_nId(Next()) {}
    CEntryId & operator=(CEntryId const &) noexcept
    {
        m_nId = Next();
        return *this;
    }
    ~CEntryId() = default;

    std::uint64_t Get() const noexcept { return m_nId; }

private:
    QZXMLLIB_API static std::uint64_t Next() noexcept;

    std::uint64_t m_nId; ///< never 0
};

} // namespace QzXmlLib16Data
