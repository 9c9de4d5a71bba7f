#include "qzxmllib/document/XmlTreeInternal.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/FormatString.h"
#include "qzxmllib/support/MemoryLeakHelpInternal.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace QzXmlLib16
{

namespace
{

CInstanceName g_xmlElementName(u"CXmlElement");
CInstanceName g_xmlAttributeName(u"CXmlAttribute");

} // namespace

/// The names in a path. The aliases are brought into order by URI once, as a document may have many of them.
class CPathNames
{
public:
    explicit CPathNames(CXmlDocument const & document)
    {
        // The first alias of a URI in ascending order stands for it.
        for (auto const & [strAlias, strUri] : document.m_mapNamespaces)
            m_aliases.emplace(strUri, &strAlias);
    }

    /// "alias:", or nothing.
    std::u16string AliasPrefixOf(std::u16string const & strUri) const
    {
        auto const it = strUri.empty() ? m_aliases.end() : m_aliases.find(strUri);
        return it != m_aliases.end() && !it->second->empty() ? *it->second + u":" : std::u16string();
    }
    std::u16string QNameOf(CXmlName const & name) const
    {
        return AliasPrefixOf(name.strNamespaceURI) + name.strLocalName;
    }
    std::u16string PathOf(CXmlElement const & element) const
    {
        std::vector<CXmlElement const *> path;
        for (CXmlElement const * p = &element; p != nullptr; p = p->m_pParent)
            path.push_back(p);
        std::u16string strPath;
        for (auto it = path.rbegin(); it != path.rend(); ++it)
            strPath += u"/" + StepOf(**it);
        return strPath;
    }
    /// The name, with its position if siblings have the same.
    std::u16string StepOf(CXmlElement const & element) const
    {
        std::u16string const strName = QNameOf(*element.m_pName);
        if (element.m_pParent == nullptr)
            return strName;
        std::unordered_map<CXmlName const *, bool> namesakes{{element.m_pName, true}};
        auto const isNamesake = [&](CXmlName const & name)
        {
            // The end of the name, which most siblings settle by.
            std::u16string const & strLocal = name.strLocalName;
            if (strLocal.size() > strName.size() ||
                strName.compare(strName.size() - strLocal.size(), strLocal.size(), strLocal) != 0)
                return false;
            auto const [it, bNew] = namesakes.try_emplace(&name, false);
            if (bNew)
                it->second = QNameOf(name) == strName;
            return it->second;
        };
        CXmlName const * pLastName = element.m_pName;
        bool bNamesake = true;
        int nNamesakes = 0;
        int nPosition = 0;
        for (CXmlElement const * p = element.m_pParent->m_pFirstChild; p != nullptr; p = p->m_pNextSibling)
        {
            // Siblings mostly come in runs of one name.
            if (p->m_pName != pLastName)
            {
                pLastName = p->m_pName;
                bNamesake = isNamesake(*pLastName);
            }
            if (bNamesake)
                ++nNamesakes;
            if (p == &element)
                nPosition = nNamesakes;
        }
        return nNamesakes > 1 ? FormatString(u"%s[%d]", strName, nPosition) : strName;
    }

private:
    std::unordered_map<std::u16string_view, std::u16string const *> m_aliases;
};

std::u16string & CXmlText::String(XmlOwned & ring)
{
    if (m_bString)
        return m_pOwned->strText;
    m_pOwned = new XmlOwnedText(ring, Copy());
    m_bString = 1;
    m_bRuns = 0;
    m_nUnits = 0;
    m_nCapacity = 0;
    return m_pOwned->strText;
}

template <class F>
void CXmlText::ForEachPiece(F const & take) const
{
    if (m_bString)
        return take(std::u16string_view(m_pOwned->strText));
    if (!m_bRuns)
        return take(std::u16string_view(m_pUnits, m_nUnits));
    for (XmlRun const * pRun = &m_pRuns->first; pRun != nullptr; pRun = pRun->pNext)
        for (std::uint32_t i = 0; i < pRun->nRepeat; ++i)
            take(std::u16string_view(pRun->pUnits, pRun->nUnits));
    if (m_pRuns->bMatching)
        take(std::u16string_view(m_pRuns->pLast->pUnits, m_pRuns->nMatched));
}

std::u16string CXmlText::Copy() const
{
    std::u16string strText;
    strText.reserve(Size());
    ForEachPiece([&strText](std::u16string_view piece) { strText.append(piece); });
    return strText;
}

void CXmlText::CopyTo(char16_t * pOut) const
{
    ForEachPiece([&pOut](std::u16string_view piece) { pOut += piece.copy(pOut, piece.size()); });
}

CXmlAttribute::CXmlAttribute(CXmlName const & name, CXmlElement * pElement)
    : CInstanceMonitor(g_xmlAttributeName), m_pElement(pElement), m_pName(&name)
{
}

CXmlAttribute::~CXmlAttribute() = default;

std::u16string const & CXmlAttribute::GetValue() const
{
    return m_value.String(m_pElement->GetTree().Owned());
}

std::u16string CXmlAttribute::GetXPath() const
{
    CPathNames const names(*m_pElement->GetDocument());
    return names.PathOf(*m_pElement) + u"/" + names.AliasPrefixOf(GetNamespaceURI()) + u"@" + GetLocalName();
}

CXmlElement::CXmlElement(CXmlName const & name, CXmlElement * pParent)
    : CInstanceMonitor(g_xmlElementName), m_pParent(pParent), m_pName(&name), m_pFirstAttribute(nullptr)
{
}

CXmlElement::~CXmlElement()
{
    if (m_text.m_bMark)
        delete m_pAttributes;
}

std::u16string const & CXmlElement::GetText() const
{
    return m_text.String(GetTree().Owned());
}

CXmlTree & CXmlElement::GetTree() const
{
    return *GetDocument()->m_pTree;
}

std::vector<CXmlAttribute *> const & CXmlElement::GetAttributes() const
{
    static auto const * const s_pNone = new std::vector<CXmlAttribute *>;
    if (!m_text.m_bMark)
    {
        if (m_pFirstAttribute == nullptr)
            return *s_pNone;
        auto pAttributes = std::make_unique<AttributeVector>(GetTree().Owned(), m_pFirstAttribute);
        for (CXmlAttribute * p = m_pFirstAttribute; p != nullptr; p = p->m_pNext)
            pAttributes->attributes.push_back(p);
        m_pAttributes = pAttributes.release();
        m_text.m_bMark = 1;
    }
    return m_pAttributes->attributes;
}

std::u16string const & CXmlElement::GetAttribute(char16_t const * localName, char16_t const * namespaceURI) const
{
    static auto const * const s_pNone = new std::u16string;
    for (CXmlAttribute const * p = GetFirstAttribute(); p != nullptr; p = p->GetNextAttribute())
        if (EqualText(p->GetLocalName(), OrEmpty(localName)) && EqualText(p->GetNamespaceURI(), OrEmpty(namespaceURI)))
            return p->GetValue();
    return *s_pNone;
}

std::u16string CXmlElement::GetXPath() const
{
    return CPathNames(*GetDocument()).PathOf(*this);
}

void CXmlElement::AppendText(char16_t const * pText, std::size_t nUnits)
{
    if (m_pLastChild != nullptr || m_text.m_bRuns)
    {
        GetTree().AppendRun(*this, pText, nUnits);
        return;
    }
    GetTree().Append(m_text, nUnits,
        [pText, nUnits](char16_t * pOut)
        {
            std::copy_n(pText, nUnits, pOut);
            return nUnits;
        });
}

CXmlElement * CXmlElement::RemoveLastChildElement(CXmlElement * pBefore)
{
    (pBefore != nullptr ? pBefore->m_pNextSibling : m_pFirstChild) = nullptr;
    return std::exchange(m_pLastChild, pBefore);
}

} // namespace QzXmlLib16
