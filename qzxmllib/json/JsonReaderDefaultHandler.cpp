#include "qzxmllib/json/JsonReaderDefaultHandler.h"

#include "qzxmllib/support/MemoryLeakHelpInternal.h"

namespace QzXmlLib16
{

IJsonReaderHandler::IJsonReaderHandler() : CInstanceMonitor(u"IJsonReaderHandler") {}

IJsonReaderHandler::~IJsonReaderHandler() = default;

CJsonReaderDefaultHandler::CJsonReaderDefaultHandler() = default;

CJsonReaderDefaultHandler::~CJsonReaderDefaultHandler() = default;

void CJsonReaderDefaultHandler::SetNextHandler(IJsonReaderHandler * pHandler)
{
    m_pNextHandler.reset(pHandler);
}

CJsonReaderDefaultHandler::CJsonPathPart & CJsonReaderDefaultHandler::Push(Kind eKind)
{
    if (m_nParts == m_parts.size())
        m_parts.emplace_back();
    CJsonPathPart & part = m_parts[m_nParts++];
    part.strName.clear();
    part.nIndex = -1;
    part.eKind = eKind;
    return part;
}

void CJsonReaderDefaultHandler::PopThrough(Kind eKind)
{
    while (m_nParts != 0 && m_parts[--m_nParts].eKind != eKind)
        ;
}

std::u16string CJsonReaderDefaultHandler::GetErrorPath()
{
    std::u16string strPath = u"$";
    for (std::size_t nPart = m_nParts; nPart-- != 0;)
    {
        CJsonPathPart const & part = m_parts[nPart];
        if (part.eKind == Kind_Array)
            continue;
        strPath += u'.';
        if (part.nIndex < 0)
            strPath += part.strName;
        else // an object in an array, which lies below it and knows the name
            strPath += FormatString(u"%s[%d]", m_parts[nPart - 1].strName, part.nIndex);
    }
    return strPath;
}

void CJsonReaderDefaultHandler::StartDocument()
{
    DebugTrace(u"StartDocument\n");
    if (m_pNextHandler)
        m_pNextHandler->StartDocument();
}

void CJsonReaderDefaultHandler::EndDocument()
{
    DebugTrace(u"EndDocument\n");
    if (m_pNextHandler)
        m_pNextHandler->EndDocument();
}

void CJsonReaderDefaultHandler::Name(std::u16string const & strName)
{
    DebugTrace(u"Name: %s\n", strName);
    CJsonPathPart & part = IsTop(Kind_Name) ? m_parts[m_nParts - 1] : Push(Kind_Name);
    part.strName.assign(strName);
    if (m_pNextHandler)
        m_pNextHandler->Name(strName);
}

void CJsonReaderDefaultHandler::String(std::u16string const & strText)
{
    DebugTrace(u"String: %s\n", strText);
    if (m_pNextHandler)
        m_pNextHandler->String(strText);
}

void CJsonReaderDefaultHandler::Number(std::u16string const & strText)
{
    DebugTrace(u"Number: %s\n", strText);
    if (m_pNextHandler)
        m_pNextHandler->Number(strText);
}

void CJsonReaderDefaultHandler::StartObject()
{
    DebugTrace(u"StartObject\n");
    // The outermost object has no part.
    if (IsTop(Kind_Name))
    {
        m_parts[m_nParts - 1].eKind = Kind_Object;
    }
    else if (IsTop(Kind_Array))
    {
        std::int32_t const nIndex = ++m_parts[m_nParts - 1].nIndex;
        Push(Kind_Object).nIndex = nIndex;
    }
    if (m_pNextHandler)
        m_pNextHandler->StartObject();
}

void CJsonReaderDefaultHandler::EndObject()
{
    DebugTrace(u"EndObject\n");
    PopThrough(Kind_Object);
    if (m_pNextHandler)
        m_pNextHandler->EndObject();
}

void CJsonReaderDefaultHandler::StartArray()
{
    DebugTrace(u"StartArray\n");
    if (IsTop(Kind_Name))
        m_parts[m_nParts - 1].eKind = Kind_Array;
    else if (m_nParts != 0)
        Push(Kind_Array);
    if (m_pNextHandler)
        m_pNextHandler->StartArray();
}

void CJsonReaderDefaultHandler::EndArray()
{
    DebugTrace(u"EndArray\n");
    PopThrough(Kind_Array);
    if (m_pNextHandler)
        m_pNextHandler->EndArray();
}

void CJsonReaderDefaultHandler::Bool(bool bValue)
{
    DebugTrace(u"Bool: %s\n", bValue ? u"true" : u"false");
    if (m_pNextHandler)
        m_pNextHandler->Bool(bValue);
}

void CJsonReaderDefaultHandler::Null()
{
    DebugTrace(u"Null\n");
    if (m_pNextHandler)
        m_pNextHandler->Null();
}

} // namespace QzXmlLib16
