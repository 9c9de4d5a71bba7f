// All objects with static storage that the library builds when it is loaded, in the order in which they come up. They
// go down in the opposite order, so the instance report is made while the list and the lock still stand, and after
// everything else that may own a monitored object.

#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/binding/XmlGeneratedClass.h"
#include "qzxmllib/support/MemoryLeakHelp.h"
#include "qzxmllib/support/MemoryLeakHelpInternal.h"

std::list<CInstanceMonitor::ClassType *> CInstanceMonitor::ms_List;
CQZCriticalSection CInstanceMonitor::m_cs;

namespace
{

CInstanceTracker g_tracker;

} // namespace

namespace QzXmlLib16
{

CSerializationContext CSerializationContext::m_defaultContext;
CQZCriticalSection CXmlGeneratedClass::m_csInit;

} // namespace QzXmlLib16
