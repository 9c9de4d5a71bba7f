#pragma once

#include "qzxmllib/values/Functions.h"
#include "qzxmllib/values/ItemType.h"

#include <memory>

namespace QzXmlLib16
{

/// What the checks of one kind need of the texts of a CPrimitiveRestrictions: parsed bounds or a compiled pattern. Made
/// by the first check, never changed, and found by all threads without a lock.
struct CFacetCache
{
    explicit CFacetCache(ItemType eType) noexcept : m_eType(eType) {}
    CFacetCache(CFacetCache const &) = delete;
    CFacetCache & operator=(CFacetCache const &) = delete;
    virtual ~CFacetCache() = default;

    /// Null if the texts cannot be parsed, have changed since the first check, or if that was one of another kind. The
    /// first cache stays all the same: another thread may be reading it.
    template <class Cache>
    static Cache const * Of(CPrimitiveRestrictions const & restrictions)
    {
        CFacetCache const * pCache = restrictions.m_pCache.load(std::memory_order_acquire);
        if (pCache == nullptr)
        {
            std::unique_ptr<Cache const> spNew = Cache::Make(restrictions);
            if (spNew == nullptr)
                return nullptr;
            if (restrictions.m_pCache.compare_exchange_strong(pCache, spNew.get(), std::memory_order_acq_rel))
                pCache = spNew.release();
        }
        if (pCache->m_eType != Cache::kType)
            return nullptr;
        Cache const * const pFound = static_cast<Cache const *>(pCache);
        return pFound->Fits(restrictions) ? pFound : nullptr;
    }

    /// Nobody else may be using the restrictions.
    static void Drop(CPrimitiveRestrictions & restrictions) noexcept
    {
        delete restrictions.m_pCache.exchange(nullptr, std::memory_order_acquire);
    }

    ItemType const m_eType;
};

} // namespace QzXmlLib16
