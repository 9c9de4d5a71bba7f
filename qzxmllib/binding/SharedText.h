#pragma once

#include "qzxmllib/support/Export.h"

#include <string>

namespace QzXmlLib16
{

/// Text that never changes and that many objects hold together, such as the namespace of all elements of a tree.
class QZXMLLIB_API CSharedText
{
public:
    /// Empty.
    CSharedText() noexcept : m_pBody(nullptr) {}
    explicit CSharedText(std::u16string const & strText);
    CSharedText(CSharedText const & other) noexcept;
    CSharedText(CSharedText && other) noexcept : m_pBody(other.m_pBody) { other.m_pBody = nullptr; }
    CSharedText & operator=(CSharedText other) noexcept;
    ~CSharedText();

    /// Valid as long as any holder of the text lives.
    std::u16string const & String() const noexcept;
    bool IsEmpty() const noexcept { return m_pBody == nullptr; }

    /// The namespace list "##any", which costs no count.
    static CSharedText Any() noexcept;

private:
    struct Body;

    explicit CSharedText(Body * pBody) noexcept : m_pBody(pBody) {}

    Body * m_pBody; ///< null for the empty text
};

} // namespace QzXmlLib16
