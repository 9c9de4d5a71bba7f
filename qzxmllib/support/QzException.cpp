#include "qzxmllib/support/QzException.h"

namespace QzXmlLib16
{

namespace
{

/// While a single link of a chain is cloned, copies take no cause.
thread_local bool t_bCloningLink = false;

struct CLinkScope
{
    CLinkScope() noexcept { t_bCloningLink = true; }
    CLinkScope(CLinkScope const &) = delete;
    CLinkScope & operator=(CLinkScope const &) = delete;
    ~CLinkScope() { t_bCloningLink = false; }
};

} // namespace

CQzException::CQzException() = default;

CQzException::CQzException(std::u16string strMessage) : m_strMessage(std::move(strMessage)) {}

CQzException::CQzException(std::u16string strMessage, CQzException const & inner)
    : m_strMessage(std::move(strMessage)), m_pInnerException(inner.Clone())
{
}

CQzException::CQzException(std::u16string strMessage, std::u16string strPath)
    : m_strMessage(std::move(strMessage)), m_strPath(std::move(strPath))
{
    if (!m_strPath.empty())
        m_strMessage.append(u"\nPath: ").append(m_strPath);
}

CQzException::CQzException(std::u16string strMessage, std::u16string strPath, CQzException const & inner)
    : CQzException(std::move(strMessage), std::move(strPath))
{
    m_pInnerException = inner.Clone();
}

CQzException::CQzException(CQzException const & other)
    : m_strMessage(other.m_strMessage), m_strPath(other.m_strPath),
      m_pInnerException(t_bCloningLink ? nullptr : CloneChain(other.m_pInnerException))
{
}

/// Link by link, as a chain has one for each level of a deep object: Clone alone would recurse along it.
CQzException * CQzException::CloneChain(CQzException const * pLink)
{
    CQzException holder;
    for (CQzException * pLast = &holder; pLink != nullptr; pLink = pLink->m_pInnerException)
    {
        CLinkScope const scope;
        pLast = pLast->m_pInnerException = pLink->Clone();
    }
    return std::exchange(holder.m_pInnerException, nullptr);
}

CQzException & CQzException::operator=(CQzException const & other)
{
    // The copy stands on its own before the old chain goes: other may be part of that chain.
    CQzException copy(other);
    m_strMessage.swap(copy.m_strMessage);
    m_strPath.swap(copy.m_strPath);
    std::swap(m_pInnerException, copy.m_pInnerException);
    return *this;
}

CQzException::~CQzException()
{
    // Link by link, as a chain has one for each level of a deep object.
    while (m_pInnerException != nullptr)
    {
        CQzException * const pLink = m_pInnerException;
        m_pInnerException = std::exchange(pLink->m_pInnerException, nullptr);
        delete pLink;
    }
}

std::u16string CQzException::GetMessageW() const
{
    return m_strMessage;
}

std::u16string CQzException::GetPath() const
{
    return m_strPath;
}

std::u16string CQzException::GetFullMessage() const
{
    std::u16string strResult = m_strMessage;
    for (CQzException const * p = GetInnerException(); p != nullptr; p = p->GetInnerException())
        strResult.append(u"\n").append(p->m_strMessage);
    return strResult;
}

CQzException const * CQzException::GetInnerException() const
{
    return m_pInnerException;
}

CQzException * CQzException::Clone() const
{
    return new CQzException(*this);
}

CQzException * CQzValidationException::Clone() const
{
    return new CQzValidationException(*this);
}

CQzException * CQzInvalidValueException::Clone() const
{
    return new CQzInvalidValueException(*this);
}

CQzException * CQzInvalidNamespaceException::Clone() const
{
    return new CQzInvalidNamespaceException(*this);
}

CQzException * CQzInvalidStateException::Clone() const
{
    return new CQzInvalidStateException(*this);
}

CQzException * CQzInvalidParamException::Clone() const
{
    return new CQzInvalidParamException(*this);
}

CQzException * CQzOverFlowException::Clone() const
{
    return new CQzOverFlowException(*this);
}

} // namespace QzXmlLib16
