#include "qzxmllib/binding/XmlObjectBase.h"

#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/support/ThreadStackInternal.h"
#include "qzxmllib/values/FunctionsInternal.h"

#include <new>
#include <utility>
#include <vector>

namespace QzXmlLib16
{

namespace
{

/// Keeps the count of an object that is being destroyed away from 0, so that a listener which takes and drops a count
/// in a destructor's event does not destroy the object again.
constexpr std::int32_t kCountInDestruction = 0x40000000;

// At a fixed place, see ThreadStack.cpp.
/// Objects whose destruction is under way on this thread, one inside the other.
__attribute__((tls_model("initial-exec"))) thread_local int t_nDestructions = 0;
/// Objects that wait for the outermost destruction, as the stack was too low for them. Null for none.
thread_local std::vector<CXmlObjectBase *> * t_pPostponed = nullptr;

/// False if there is no memory to remember the object.
bool Postpone(CXmlObjectBase * pObject) noexcept
{
    try
    {
        if (t_pPostponed == nullptr)
            t_pPostponed = new std::vector<CXmlObjectBase *>;
        t_pPostponed->push_back(pObject);
        return true;
    }
    catch (std::bad_alloc const &)
    {
        return false;
    }
}

/// The next of the objects that wait, or null; the list goes with the last of them.
CXmlObjectBase * TakePostponed() noexcept
{
    if (t_pPostponed == nullptr)
        return nullptr;
    if (t_pPostponed->empty())
    {
        delete std::exchange(t_pPostponed, nullptr);
        return nullptr;
    }
    CXmlObjectBase * const pObject = t_pPostponed->back();
    t_pPostponed->pop_back();
    return pObject;
}

} // namespace

CXmlObjectBase::CXmlObjectBase() = default;

CXmlObjectBase::CXmlObjectBase(CXmlObjectBase const & other) : IEventSink(), m_strElementName(other.m_strElementName) {}

CXmlObjectBase & CXmlObjectBase::operator=(CXmlObjectBase const & other)
{
    m_strElementName = other.m_strElementName;
    return *this;
}

CXmlObjectBase::~CXmlObjectBase() = default;

long CXmlObjectBase::AddRef()
{
    return m_nRefCount.fetch_add(1, std::memory_order_relaxed) + 1;
}

long CXmlObjectBase::Release()
{
    // Whoever holds the only count shares the object with nobody, and the count goes with it.
    bool const bLast = m_nRefCount.load(std::memory_order_acquire) == 1;
    std::int32_t const nCount = bLast ? 0 : m_nRefCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (nCount == 0)
        Destroy(this);
    return nCount;
}

void CXmlObjectBase::Destroy(CXmlObjectBase * pObject) noexcept
{
    pObject->m_nRefCount.store(kCountInDestruction, std::memory_order_relaxed);
    if (t_nDestructions != 0 && IsStackLow() && Postpone(pObject))
        return;
    ++t_nDestructions;
    delete pObject;
    if (t_nDestructions == 1)
        while (CXmlObjectBase * const pNext = TakePostponed())
            delete pNext;
    --t_nDestructions;
}

void CXmlObjectBase::OnEvent(CXmlObjectBase *, IEventSink::MsgType, void *) {}

CXmlObjectBase const * CXmlObjectBase::GetBase() const
{
    return Mutable()->GetBase();
}

void CXmlObjectBase::SetElementName(char16_t const * name)
{
    m_strElementName = OrEmpty(name);
}

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter *, CSerializationContext const &) const {}

void CXmlObjectBase::AttributesToXml_Int(
    CXmlObjectBase const * pObject, CXmlWriter * pWriter, CSerializationContext const & ctx)
{
    pObject->AttributesToXml_Int(pWriter, ctx);
}

void CXmlObjectBase::ToXml_Int(CXmlObjectBase const * pObject, CXmlWriter * pWriter, bool isRoot,
    char16_t const * namespaceUri, CSerializationContext const & ctx, bool emptyChoiceAllowed)
{
    pObject->ToXml_Int(pWriter, isRoot, namespaceUri, ctx, emptyChoiceAllowed);
}

CXmlElement * CXmlObjectBase::FromXml_Int(
    CXmlObjectBase * pObject, CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx)
{
    return pObject->FromXml_Int(pElement, pChild, ctx, false);
}

void CXmlObjectBase::SetElementName(CXmlObjectBase * pObject, char16_t const * name)
{
    pObject->SetElementName(name);
}

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink * pSink, CXmlCollectionBase * pSource)
{
    pSink->OnEvent(pSource->GetBase(), IEventSink::MsgType_CollectionChange, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink * pSink, CXmlCollectionBase * pSource, void * pData)
{
    pSink->OnEvent(pSource->GetBase(), IEventSink::MsgType_CollectionAdd, pData);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink * pSink, CXmlCollectionBase * pSource, void * pData)
{
    pSink->OnEvent(pSource->GetBase(), IEventSink::MsgType_CollectionAddComplete, pData);
}

void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink * pSink, CXmlCollectionBase * pSource, int nIndex)
{
    pSink->OnEvent(pSource->GetBase(), IEventSink::MsgType_CollectionRemove, nIndex != -1 ? &nIndex : nullptr);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink * pSink, CXmlCollectionBase * pSource, int nIndex)
{
    pSink->OnEvent(pSource->GetBase(), IEventSink::MsgType_CollectionRemoveComplete, nIndex != -1 ? &nIndex : nullptr);
}

void CXmlObjectBase::Choice_SetElementValid(bool valid, char16_t const * name, std::u16string & current)
{
    if (!valid)
    {
        current.clear();
        return;
    }
    if (!current.empty() && current != name)
        throw CQzInvalidStateException(FormatString(
            u"The Property %s is already set. Only one element within this class bay be set at a time", current));
    current = name;
}

void CXmlObjectBase::Choice_SelectElement(char16_t const * name, CXmlObjectBase * pValue, std::u16string & current)
{
    if (current == name)
    {
        if (pValue == nullptr)
            current.clear();
    }
    else if (current.empty())
    {
        current = name;
    }
    else if (pValue != nullptr)
    {
        throw CQzInvalidStateException(FormatString(
            u"The Property [%s] is already set. Only one element within this class bay be set at a time", current));
    }
}

void CXmlObjectBase::Choice_CollectionChanged(char16_t const * name, long count, std::u16string & current)
{
    if (current == name)
    {
        if (count == 0)
            current.clear();
    }
    else if (current.empty())
    {
        if (count > 0)
            current = name;
    }
    else if (count != 0)
    {
        throw CQzInvalidStateException(FormatString(
            u"The Property [%s] is already set. Only one element within this class bay be set at a time", current));
    }
}

void CXmlObjectBase::Choice_Read_Collection(CXmlCollectionBase * pCol, CXmlElement * pElement, CXmlElement *& pCurrent,
    long & count, CSerializationContext const & ctx)
{
    if (count > 0)
        return;
    CXmlElement * const pNext = FromXml_Int(pCol, pElement, pCurrent, ctx);
    if (pNext == pCurrent)
        return;
    pCurrent = pNext;
    pCol->ValidateCount(ctx);
    ++count;
}

void CXmlObjectBase::Throw_IfPropertyIsNull(CXmlObjectBase * pValue, char16_t const * name)
{
    if (pValue == nullptr)
        throw CQzInvalidParamException(FormatString(u"The Property [%s] is mandatory, it may node be NULL", name));
}

void CXmlObjectBase::Throw_IfElementNameDiffers(CXmlObjectBase * pValue, char16_t const * name)
{
    if (pValue == nullptr)
        return;
    std::u16string const & strActual = pValue->GetBase()->m_strElementName;
    if (strActual != name)
        throw CQzInvalidParamException(FormatString(
            u"This property requires an element with the name %s the element being set has the element name %s", name,
            strActual));
}

void CXmlObjectBase::TestNamespace(char16_t const * ns, char16_t const * list, char16_t const * target) const
{
    CheckNamespaceAllowed(OrEmpty(ns), OrEmpty(list), OrEmpty(target));
}

bool CXmlObjectBase::IsNamespaceValid(char16_t const * ns, char16_t const * list, char16_t const * target) const
{
    return IsNamespaceAllowed(OrEmpty(ns), OrEmpty(list), OrEmpty(target));
}

bool CXmlObjectBase::DoesElementNameMatch(
    CSerializationContext const & ctx, CXmlElement const * pElement, char16_t const * name, char16_t const * ns) const
{
    if (!EqualText(pElement->GetLocalName(), OrEmpty(name)))
        return false;
    // SchemaType_NoNamespaces is part of this answer.
    return ctx.GetIgnoreNamespaces() || EqualText(pElement->GetNamespaceURI(), OrEmpty(ns));
}

} // namespace QzXmlLib16
