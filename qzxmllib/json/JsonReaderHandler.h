#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <string>

namespace QzXmlLib16
{

/// Receives what a CJsonTextReader finds, in the order of the text. What an operation throws ends the reading and
/// reaches the caller of the reader.
class QZXMLLIB_API IJsonReaderHandler : public CInstanceMonitor
{
public:
    IJsonReaderHandler();
    IJsonReaderHandler(IJsonReaderHandler const &) = delete;
    IJsonReaderHandler & operator=(IJsonReaderHandler const &) = delete;
    ~IJsonReaderHandler() override;

    virtual void StartDocument() = 0;
    /// Does not come when the reading failed.
    virtual void EndDocument() = 0;
    /// The name of a property. Its value follows.
    virtual void Name(std::u16string const & strName) = 0;
    virtual void String(std::u16string const & strText) = 0;
    /// The number as it was spelled.
    virtual void Number(std::u16string const & strText) = 0;
    virtual void StartObject() = 0;
    virtual void EndObject() = 0;
    virtual void StartArray() = 0;
    virtual void EndArray() = 0;
    virtual void Bool(bool bValue) = 0;
    virtual void Null() = 0;
};

/// Tells where in the text a failure happened.
class QZXMLLIB_API IErrorPathProvider
{
public:
    /// "$" and the names of what is open, innermost first, as in "$.c.b[1].a".
    virtual std::u16string GetErrorPath() = 0;

protected:
    ~IErrorPathProvider() = default;
};

} // namespace QzXmlLib16
