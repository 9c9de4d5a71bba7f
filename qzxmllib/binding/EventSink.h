#pragma once

#include "qzxmllib/support/Export.h"

namespace QzXmlLib16
{

class CXmlObjectBase;

/// Listener of collection events.
class QZXMLLIB_API IEventSink
{
public:
    enum MsgType
    {
        MsgType_CollectionChange = 0,        ///< no data
        MsgType_CollectionAdd = 1,           ///< data: pointer to the new item
        MsgType_CollectionAddComplete = 2,   ///< data: pointer to the new item
        MsgType_CollectionRemove = 3,        ///< data: pointer to the int index, or null when none is told
        MsgType_CollectionRemoveComplete = 4 ///< data: as for MsgType_CollectionRemove
    };

    /// Called on the thread that changes the collection. pData lives as long as the call. A listener refuses a change
    /// by throwing from the event that comes before it.
    virtual void OnEvent(CXmlObjectBase * pMsgSource, MsgType msgType, void * pData) = 0;

protected:
    ~IEventSink() = default;
};

} // namespace QzXmlLib16
