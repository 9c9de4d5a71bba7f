#pragma once

#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

#include <memory>
#include <string>
#include <utility>

namespace QzXmlLib16
{

/// What a value needs on its way into a writer. It belongs to the writer, so that memory serves one value after the
/// other.
struct CWriteScratch
{
    QzVariant value;
    std::u16string strText;
    bool bLent = false;
};

/// Holds the scratch of a writer for the length of a block. Whoever asks for it meanwhile gets one of his own.
class CWriteLease
{
public:
    explicit CWriteLease(CXmlWriter & writer) : m_writer(writer)
    {
        if (writer.m_spScratch == nullptr)
            writer.m_spScratch = std::make_unique<CWriteScratch>();
        m_pScratch = writer.m_spScratch.get();
        if (m_pScratch->bLent)
        {
            m_spOwn = std::make_unique<CWriteScratch>();
            m_pScratch = m_spOwn.get();
        }
        m_pScratch->bLent = true;
    }
    CWriteLease(CWriteLease const &) = delete;
    CWriteLease & operator=(CWriteLease const &) = delete;
    ~CWriteLease()
    {
        m_writer.m_pEntryName = nullptr;
        CVariantText::Reuse(m_pScratch->value);
        m_pScratch->bLent = false;
    }

    /// Says that until the end of the block this string is the name of the metadata entry with the number.
    void Lend(std::u16string const & strName, std::uint64_t nEntry) const noexcept
    {
        m_writer.m_pEntryName = &strName;
        m_writer.m_nEntry = nEntry;
    }
    /// Without a kind at first.
    QzVariant & Value() const noexcept { return m_pScratch->value; }
    /// Of any content at first.
    std::u16string & Text() const noexcept { return m_pScratch->strText; }

private:
    CXmlWriter & m_writer;
    std::unique_ptr<CWriteScratch> m_spOwn;
    CWriteScratch * m_pScratch;
};

/// Lends a writer a namespace for the length of a block. Those who get no more than its characters on the way find the
/// string again.
class CNamespaceLoan
{
public:
    CNamespaceLoan(CXmlWriter & writer, std::u16string const & strNamespace) noexcept
        : m_writer(writer), m_pOuter(std::exchange(writer.m_pNamespace, &strNamespace))
    {
    }
    CNamespaceLoan(CNamespaceLoan const &) = delete;
    CNamespaceLoan & operator=(CNamespaceLoan const &) = delete;
    ~CNamespaceLoan() { m_writer.m_pNamespace = m_pOuter; }

    /// The string that was lent if these are its characters, or null.
    static std::u16string const * Find(CXmlWriter const & writer, char16_t const * pszNamespace) noexcept
    {
        std::u16string const * const pLent = writer.m_pNamespace;
        return pLent != nullptr && pLent->c_str() == pszNamespace ? pLent : nullptr;
    }

private:
    CXmlWriter & m_writer;
    std::u16string const * m_pOuter;
};

} // namespace QzXmlLib16
