#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/FormatString.h"

#include <string>
#include <utility>

namespace QzXmlLib16
{

/// Root of all failures that leave the library. Thrown by value and caught by reference. Carries a message, the XPath
/// of the node at fault when it is known, and a private copy of the failure that caused this one.
///
/// What a From... operation throws names the element in its own message; what is wrong there stands in the messages
/// behind it, so that GetFullMessage() is the text for a user. A failure inside a nested object arrives as this very
/// class: catch it, and not the derived ones, around a read.
class QZXMLLIB_API CQzException
{
public:
    CQzException();
    explicit CQzException(std::u16string strMessage);
    CQzException(std::u16string strMessage, CQzException const & inner);
    /// A path that is not empty is also appended to the message, behind a line feed and "Path: ".
    CQzException(std::u16string strMessage, std::u16string strPath);
    CQzException(std::u16string strMessage, std::u16string strPath, CQzException const & inner);
    CQzException(CQzException const & other);
    CQzException & operator=(CQzException const & other);
    virtual ~CQzException();

    /// The message and, when there is one, the path behind it.
    std::u16string GetMessageW() const;
    /// The path alone, empty when there is none.
    std::u16string GetPath() const;
    /// The messages of the whole chain, outermost first, with a line feed between two.
    std::u16string GetFullMessage() const;
    /// The failure that caused this one, or null. It belongs to this object.
    CQzException const * GetInnerException() const;

protected:
    /// A new object of the most derived class; the caller owns it.
    virtual CQzException * Clone() const;

private:
    std::u16string m_strMessage;
    std::u16string m_strPath;
    friend struct CExceptionChain;

    static CQzException * CloneChain(CQzException const * pLink);

    /// A private copy, made by Clone.
    CQzException * m_pInnerException = nullptr;
    /// Made by CExceptionChain for a throw; never true of a copy.
    bool m_bWrapper = false;
};

/// The document does not agree with the metadata of a class. Carries the path of the node at fault, or that of the
/// object whose text or attribute it is. Writing gives no path.
class QZXMLLIB_API CQzValidationException : public CQzException
{
public:
    CQzValidationException() = default;
    CQzValidationException(std::u16string strMessage, std::u16string strPath)
        : CQzException(std::move(strMessage), std::move(strPath))
    {
    }
    CQzValidationException(std::u16string strMessage, std::u16string strPath, CQzException const & inner)
        : CQzException(std::move(strMessage), std::move(strPath), inner)
    {
    }
    /// Takes over message, path and a copy of the inner failure as they stand.
    CQzValidationException(CQzException const & other) : CQzException(other) {}

protected:
    CQzException * Clone() const override;
};

/// A text or number is not a legal value of its XML Schema type. Carries no path.
class QZXMLLIB_API CQzInvalidValueException : public CQzValidationException
{
public:
    CQzInvalidValueException() = default;
    explicit CQzInvalidValueException(std::u16string strMessage)
        : CQzValidationException(std::move(strMessage), std::u16string())
    {
    }
    CQzInvalidValueException(std::u16string strMessage, CQzException const & inner)
        : CQzValidationException(std::move(strMessage), std::u16string(), inner)
    {
    }
    /// Takes over message, path and a copy of the inner failure as they stand.
    CQzInvalidValueException(CQzException const & other) : CQzValidationException(other) {}

protected:
    CQzException * Clone() const override;
};

/// A namespace lies outside a namespace restriction.
class QZXMLLIB_API CQzInvalidNamespaceException : public CQzValidationException
{
public:
    CQzInvalidNamespaceException() = default;
    CQzInvalidNamespaceException(std::u16string strMessage, std::u16string strPath)
        : CQzValidationException(std::move(strMessage), std::move(strPath))
    {
    }
    CQzInvalidNamespaceException(std::u16string strMessage, std::u16string strPath, CQzException const & inner)
        : CQzValidationException(std::move(strMessage), std::move(strPath), inner)
    {
    }
    /// Takes over message, path and a copy of the inner failure as they stand.
    CQzInvalidNamespaceException(CQzException const & other) : CQzValidationException(other) {}

protected:
    CQzException * Clone() const override;
};

/// An operation is not allowed in the present state of the object.
class QZXMLLIB_API CQzInvalidStateException : public CQzException
{
public:
    CQzInvalidStateException() = default;
    explicit CQzInvalidStateException(std::u16string strMessage) : CQzException(std::move(strMessage)) {}
    CQzInvalidStateException(std::u16string strMessage, CQzException const & inner)
        : CQzException(std::move(strMessage), inner)
    {
    }
    /// Takes over message, path and a copy of the inner failure as they stand.
    CQzInvalidStateException(CQzException const & other) : CQzException(other) {}

protected:
    CQzException * Clone() const override;
};

/// An argument is out of range or of the wrong kind.
class QZXMLLIB_API CQzInvalidParamException : public CQzException
{
public:
    CQzInvalidParamException() = default;
    explicit CQzInvalidParamException(std::u16string strMessage) : CQzException(std::move(strMessage)) {}
    CQzInvalidParamException(std::u16string strMessage, CQzException const & inner)
        : CQzException(std::move(strMessage), inner)
    {
    }
    /// Takes over message, path and a copy of the inner failure as they stand.
    CQzInvalidParamException(CQzException const & other) : CQzException(other) {}

protected:
    CQzException * Clone() const override;
};

/// A number does not fit the native type asked for.
class QZXMLLIB_API CQzOverFlowException : public CQzException
{
public:
    CQzOverFlowException() = default;
    explicit CQzOverFlowException(std::u16string strMessage) : CQzException(std::move(strMessage)) {}
    CQzOverFlowException(std::u16string strMessage, CQzException const & inner)
        : CQzException(std::move(strMessage), inner)
    {
    }
    /// Takes over message, path and a copy of the inner failure as they stand.
    CQzOverFlowException(CQzException const & other) : CQzException(other) {}

protected:
    CQzException * Clone() const override;
};

} // namespace QzXmlLib16
