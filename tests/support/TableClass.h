#pragma once

#include "qzxmllib/binding/AttributeInfo.h"
#include "qzxmllib/binding/ElementInfo.h"
#include "qzxmllib/binding/XmlCollectionBase.h"
#include "qzxmllib/binding/XmlGeneratedClass.h"
#include "qzxmllib/document/XmlDocument.h"
#include "qzxmllib/values/QzVariant.h"
#include "tests/support/TestText.h"

#include <functional>
#include <utility>
#include <vector>

/// The object as XML without header and line ends.
inline std::string XmlOf(QzXmlLib16::CXmlObjectBase const & object,
    QzXmlLib16::CSerializationContext const & ctx = QzXmlLib16::CSerializationContext())
{
    return Utf8(object.ToXml(false, false, QzXmlLib16::EOLType_LF, ctx));
}

class CTableClass;

/// The tables of a class, built by a test. The tables own their entries.
class CTableSchema
{
public:
    using Group = QzXmlLib16Data::XmlElementGroupType;
    using Type = QzXmlLib16Data::XmlElementType;

    explicit CTableSchema(Group eGroup = QzXmlLib16Data::XmlElementGroupType_Sequence,
        Type eType = QzXmlLib16Data::XmlElementType_Element, bool failIfAttributeUnknown = true)
        : m_info(eGroup, eType, u"r", u"", failIfAttributeUnknown, false, -1, QzXmlLib16::ItemType_Invalid, u"", false)
    {
    }
    explicit CTableSchema(QzXmlLib16Data::CParentElementInfo const & info) : m_info(info) {}

    /// Adds an entry; its property gets the next index, which stands behind name and namespace.
    template <class Entry, class... Args>
    CTableSchema & Element(char16_t const * name, Args &&... args)
    {
        m_elements.insert(m_elements.end() - 1, new Entry(name, u"", m_nProperties++, std::forward<Args>(args)...));
        return *this;
    }
    template <class Entry, class... Args>
    CTableSchema & Attribute(char16_t const * name, Args &&... args)
    {
        m_attributes.insert(m_attributes.end() - 1, new Entry(name, u"", m_nProperties++, std::forward<Args>(args)...));
        return *this;
    }
    /// One more property without an entry, for the text of the element.
    CTableSchema & TextProperty()
    {
        ++m_nProperties;
        return *this;
    }
    /// Called at the end of Init, to create collections and mandatory objects.
    CTableSchema & OnInit(std::function<void(CTableClass &)> init)
    {
        m_init = std::move(init);
        return *this;
    }

    ~CTableSchema()
    {
        for (auto * pEntry : m_elements)
            delete pEntry;
        for (auto * pEntry : m_attributes)
            delete pEntry;
    }
    CTableSchema(CTableSchema const &) = delete;
    CTableSchema & operator=(CTableSchema const &) = delete;

    QzXmlLib16Data::CParentElementInfo m_info;
    std::vector<QzXmlLib16Data::CElementInfo *> m_elements{nullptr};
    std::vector<QzXmlLib16Data::CAttributeInfo *> m_attributes{nullptr};
    std::function<void(CTableClass &)> m_init;
    int m_nProperties = 0;
};

/// A class that takes its tables from the test and keeps its properties as variants.
class CTableClass : public QzXmlLib16::CXmlGeneratedClass
{
public:
    explicit CTableClass(CTableSchema & schema, char16_t const * name = u"r") : m_schema(schema)
    {
        SetElementName(name);
        CTableClass::Init();
    }

    using CXmlObjectBase::GetBase;
    using CXmlObjectBase::GetElementName;
    QzXmlLib16::CXmlObjectBase * GetBase() override { return this; }
    std::u16string GetTargetNamespace() override { return m_strNamespace; }
    std::u16string GetNamespace() override { return m_strNamespace; }

    void AccessProperty(int index, bool read, QzXmlLib16::QzVariant & value) override
    {
        if (m_hook)
            m_hook(index, read);
        QzXmlLib16::QzVariant & property = m_properties.at(static_cast<std::size_t>(index));
        if (read)
            value = property;
        else
            property = value;
        if (!read)
            m_setLog.push_back(index);
    }
    QzXmlLib16Data::CParentElementInfo * GetClassInfo() const override { return &m_schema.get().m_info; }
    QzXmlLib16Data::CElementInfo ** GetClassElementInfo() const override { return m_schema.get().m_elements.data(); }
    QzXmlLib16Data::CAttributeInfo ** GetClassAttributeInfo() const override
    {
        return m_schema.get().m_attributes.data();
    }
    void Init() override
    {
        m_properties.assign(static_cast<std::size_t>(m_schema.get().m_nProperties), QzXmlLib16::QzVariant());
        if (m_schema.get().m_init)
            m_schema.get().m_init(*this);
    }

    QzXmlLib16::QzVariant & operator[](int index) { return m_properties.at(static_cast<std::size_t>(index)); }

    std::reference_wrapper<CTableSchema> m_schema;
    std::vector<QzXmlLib16::QzVariant> m_properties;
    /// Called with index and direction before each access; may throw.
    std::function<void(int, bool)> m_hook;
    /// Indexes of the properties that were set, in order.
    std::vector<int> m_setLog;
    std::u16string m_strNamespace;
};

/// The same with a nil mark.
class CNillableTableClass : public CTableClass, public QzXmlLib16::INillable
{
public:
    using CTableClass::CTableClass;
    bool IsNil() override { return m_bNil; }
    void SetNil(bool bNil) override { m_bNil = bNil; }
    void Init() override
    {
        CTableClass::Init();
        m_bNil = false;
    }

    bool m_bNil = false;
};

/// A collection of CTableClass objects as a generator would write one.
class CTableCol : public QzXmlLib16::CXmlCollection
{
public:
    CTableCol(CTableSchema & schema, char16_t const * name, int nMin, int nMax)
        : CXmlCollection(name, u"", nMin, nMax), m_schema(schema)
    {
    }

    CTableClass * Add()
    {
        QzXmlLib16::CSmartPtr<CTableClass> const spItem(new CTableClass(m_schema, m_strElementName.c_str()));
        AppendItem(spItem);
        return spItem;
    }

    using CXmlCollection::AddAfterItem;
    using CXmlCollection::AddBeforeItem;
    using CXmlCollection::AddItemAt;
    using CXmlCollection::AppendItem;
    using CXmlCollection::GetNodeAtIndex;
    using CXmlCollection::PrependItem;

    bool m_bPseudo = false;

protected:
    void ToXml_Int(QzXmlLib16::CXmlWriter * pWriter, bool, char16_t const * namespaceUri,
        QzXmlLib16::CSerializationContext const & ctx, bool) const override
    {
        for (QzXmlLib16::CNode const * pNode = m_pHead; pNode != nullptr; pNode = pNode->m_pNext)
            CXmlObjectBase::ToXml_Int(pNode->m_spItem, pWriter, false, namespaceUri, ctx, false);
    }
    QzXmlLib16::CXmlElement * FromXml_Int(QzXmlLib16::CXmlElement * pParent, QzXmlLib16::CXmlElement * pCurrent,
        QzXmlLib16::CSerializationContext const & ctx, bool) override
    {
        while (pCurrent != nullptr)
        {
            if (!m_bPseudo && !DoesElementNameMatch(ctx, pCurrent, m_strElementName.c_str(), m_strNamespace.c_str()))
                break;
            QzXmlLib16::CSmartPtr<CTableClass> const spItem(new CTableClass(m_schema, m_strElementName.c_str()));
            QzXmlLib16::CXmlElement * pNext = nullptr;
            if (m_bPseudo)
            {
                pNext = CXmlObjectBase::FromXml_Int(spItem, pParent, pCurrent, ctx);
                if (pNext == pCurrent)
                    break;
            }
            else
            {
                CXmlObjectBase::FromXml_Int(spItem, pCurrent, pCurrent->GetFirstElement(), ctx);
                pNext = pCurrent->GetNextSiblingElement();
            }
            AppendItem(spItem);
            pCurrent = pNext;
        }
        return pCurrent;
    }

private:
    CTableSchema & m_schema;
};
