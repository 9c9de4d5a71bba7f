#pragma once

#include "qzxmllib/binding/XmlCollectionBase.h"

#include <functional>
#include <string>
#include <utility>

/// Writes down what it hears: "add", "added", "remove", "removed", "change", with the index of a removal.
class CListener : public QzXmlLib16::IEventSink
{
public:
    void OnEvent(QzXmlLib16::CXmlObjectBase * pSource, MsgType msgType, void * pData) override
    {
        static char const * const kNames[] = {"change", "add", "added", "remove", "removed"};
        bool const bRemoval = msgType == MsgType_CollectionRemove || msgType == MsgType_CollectionRemoveComplete;
        m_strLog += kNames[msgType];
        if (bRemoval && pData != nullptr)
            m_strLog += std::to_string(*static_cast<int *>(pData));
        else if (msgType != MsgType_CollectionChange && m_onAdd)
            m_onAdd(pData);
        if (m_bTellCount)
            m_strLog += '/' + std::to_string(static_cast<QzXmlLib16::CXmlCollectionBase *>(pSource)->GetCount());
        m_strLog += ' ';
        m_pSource = pSource;
        if (m_action)
            m_action();
    }
    std::string Take() { return std::exchange(m_strLog, {}); }

    std::string m_strLog;
    QzXmlLib16::CXmlObjectBase * m_pSource = nullptr;
    /// Whether the number of items at that time is written down behind each event.
    bool m_bTellCount = false;
    std::function<void(void *)> m_onAdd;
    std::function<void()> m_action;
};
