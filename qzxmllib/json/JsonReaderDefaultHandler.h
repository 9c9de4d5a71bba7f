#pragma once

#include "qzxmllib/json/JsonReaderHandler.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace QzXmlLib16
{

/// Traces the events to the debug output, keeps the path of what is open, and hands each event on. The path is brought
/// up to date before the event is handed on.
class QZXMLLIB_API CJsonReaderDefaultHandler : public IJsonReaderHandler, public IErrorPathProvider
{
public:
    CJsonReaderDefaultHandler();
    ~CJsonReaderDefaultHandler() override;

    /// Takes over the handler to which the events go, in place of an earlier one. May be null.
    void SetNextHandler(IJsonReaderHandler * pHandler);

    std::u16string GetErrorPath() override;

    void StartDocument() override;
    void EndDocument() override;
    void Name(std::u16string const & strName) override;
    void String(std::u16string const & strText) override;
    void Number(std::u16string const & strText) override;
    void StartObject() override;
    void EndObject() override;
    void StartArray() override;
    void EndArray() override;
    void Bool(bool bValue) override;
    void Null() override;

private:
    enum Kind
    {
        Kind_Array = 0,
        Kind_Name = 1,
        Kind_Object = 2
    };

    struct CJsonPathPart
    {
        std::u16string strName;
        /// Of an array, its last object; of an object in an array, its place there; -1 if there is none.
        std::int32_t nIndex = -1;
        Kind eKind = Kind_Name;
    };

    bool IsTop(Kind eKind) const { return m_nParts != 0 && m_parts[m_nParts - 1].eKind == eKind; }
    CJsonPathPart & Push(Kind eKind);
    void PopThrough(Kind eKind);

    /// Outermost first. Parts behind m_nParts are kept for their strings.
    std::vector<CJsonPathPart> m_parts;
    std::size_t m_nParts = 0;
    std::unique_ptr<IJsonReaderHandler> m_pNextHandler;
};

} // namespace QzXmlLib16
