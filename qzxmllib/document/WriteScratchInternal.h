#pragma once

#include "qzxmllib/document/XmlWriter.h"
#include "qzxmllib/values/QzVariant.h"
#include "qzxmllib/values/QzVariantInternal.h"

#include <memory>
#include <string>

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
    explicit CWriteLease(CXmlWriter & writer)
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
        CVariantText::Reuse(m_pScratch->value);
        m_pScratch->bLent = false;
    }

    /// Without a kind at first.
    QzVariant & Value() const noexcept { return m_pScratch->value; }
    /// Of any content at first.
    std::u16string & Text() const noexcept { return m_pScratch->strText; }

private:
    std::unique_ptr<CWriteScratch> m_spOwn;
    CWriteScratch * m_pScratch;
};

} // namespace QzXmlLib16
