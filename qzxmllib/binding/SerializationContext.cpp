#include "qzxmllib/binding/SerializationContext.h"

#include "qzxmllib/binding/Attribute.h"
#include "qzxmllib/fastinfoset/FastInfosetContext.h"
#include "qzxmllib/json/JsonContext.h"
#include "qzxmllib/support/EqualTextInternal.h"
#include "qzxmllib/support/QzException.h"

#include <iterator>

namespace QzXmlLib16
{

CNamespaceAliasMap::CNamespaceAliasMap() = default;
CNamespaceAliasMap::CNamespaceAliasMap(CNamespaceAliasMap const & other) = default;
CNamespaceAliasMap & CNamespaceAliasMap::operator=(CNamespaceAliasMap const & other) = default;
CNamespaceAliasMap::~CNamespaceAliasMap() = default;

void CNamespaceAliasMap::Add(char16_t const * alias, char16_t const * namespaceURI)
{
    m_mapAliases[OrEmpty(namespaceURI)] = OrEmpty(alias);
}

void CNamespaceAliasMap::RemoveNamespace(char16_t const * namespaceURI)
{
    m_mapAliases.erase(OrEmpty(namespaceURI));
}

std::u16string CNamespaceAliasMap::GetNamespaceFromAlias(char16_t const * alias) const
{
    std::u16string const strAlias(OrEmpty(alias));
    for (auto const & entry : m_mapAliases)
        if (entry.second == strAlias)
            return entry.first;
    throw CQzException(FormatString(u"Namespace alias [%s] not found", strAlias));
}

std::u16string CNamespaceAliasMap::GetAliasFromNamespace(char16_t const * namespaceURI) const
{
    return m_mapAliases[OrEmpty(namespaceURI)];
}

bool CNamespaceAliasMap::DoesNamespaceExist(char16_t const * namespaceURI) const
{
    return m_mapAliases.count(OrEmpty(namespaceURI)) != 0;
}

bool CNamespaceAliasMap::DoesAliasExist(char16_t const * alias) const
{
    std::u16string const strAlias(OrEmpty(alias));
    for (auto const & entry : m_mapAliases)
        if (entry.second == strAlias)
            return true;
    return false;
}

int CNamespaceAliasMap::GetNamespaceCount() const
{
    return static_cast<int>(m_mapAliases.size());
}

std::u16string CNamespaceAliasMap::GetNamespaceAt(int nIndex) const
{
    return std::next(m_mapAliases.begin(), nIndex)->first;
}

/// Options that a context and its copies hold together; the last holder destroys them.
template <class T>
class CSharedOptions
{
public:
    T value;

    /// The options behind slot, created on the first call. When two threads create them at once, one set stays.
    static T & Get(std::atomic<CSharedOptions *> & slot)
    {
        CSharedOptions * pOptions = slot.load(std::memory_order_acquire);
        if (pOptions == nullptr)
        {
            auto * const pNew = new CSharedOptions;
            if (slot.compare_exchange_strong(pOptions, pNew, std::memory_order_acq_rel))
                return pNew->value;
            delete pNew;
        }
        return pOptions->value;
    }

    static CSharedOptions * Share(std::atomic<CSharedOptions *> const & slot)
    {
        CSharedOptions * const pOptions = slot.load(std::memory_order_acquire);
        if (pOptions != nullptr)
            pOptions->m_nHolders.fetch_add(1, std::memory_order_relaxed);
        return pOptions;
    }

    static void Replace(std::atomic<CSharedOptions *> & slot, CSharedOptions * pOptions)
    {
        CSharedOptions * const pOld = slot.exchange(pOptions, std::memory_order_acq_rel);
        if (pOld != nullptr && pOld->m_nHolders.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete pOld;
    }

private:
    std::atomic<long> m_nHolders{1};
};

using FIOptions = CSharedOptions<CFastInfosetContext>;
using JsonOptions = CSharedOptions<CJsonContext>;

namespace
{

/// The slot takes a count of the new collection and gives back that of the old one.
void ReplaceAttributes(std::atomic<CAttributeCol *> & slot, CAttributeCol * pNew)
{
    if (pNew != nullptr)
        pNew->AddRef();
    CAttributeCol * const pOld = slot.exchange(pNew, std::memory_order_acq_rel);
    if (pOld != nullptr)
        pOld->Release();
}

} // namespace

CReadLimits CReadLimits::Strict() noexcept
{
    CReadLimits limits;
    limits.nMaxDepth = 256;
    limits.nMaxAmplification = 10;
    limits.nMaxInflatedOctets = 64 * 1024 * 1024;
    limits.bAllowDocumentType = false;
    return limits;
}

CSerializationContext::CSerializationContext() = default;

CSerializationContext::CSerializationContext(CSerializationContext const & other) : CSerializationContext()
{
    *this = other;
}

CSerializationContext & CSerializationContext::operator=(CSerializationContext const & other)
{
    if (this == &other)
        return *this;
    FIOptions::Replace(m_pFIContext, FIOptions::Share(other.m_pFIContext));
    JsonOptions::Replace(m_pJsonContext, JsonOptions::Share(other.m_pJsonContext));
    ReplaceAttributes(m_spAdditionalRootAttributes, other.FindAdditionalRootAttributes());
    m_strDefaultNamespaceURI = other.m_strDefaultNamespaceURI;
    m_bWriteTypeAttribute = other.m_bWriteTypeAttribute;
    m_namespaceAliases = other.m_namespaceAliases;
    m_processingInstructions = other.m_processingInstructions;
    m_strInLineSchema = other.m_strInLineSchema;
    m_bIgnoreInvalidCollectionCounts = other.m_bIgnoreInvalidCollectionCounts;
    m_bIgnoreMissingChoice = other.m_bIgnoreMissingChoice;
    m_bIgnoreMissingMandatoryElements = other.m_bIgnoreMissingMandatoryElements;
    m_bIgnoreUnknownElements = other.m_bIgnoreUnknownElements;
    m_bIgnoreUnknownAttributes = other.m_bIgnoreUnknownAttributes;
    m_bIgnoreNamespaces = other.m_bIgnoreNamespaces.load();
    m_eSchemaType = other.m_eSchemaType;
    m_bNoOptionalAttributeDefaultOutput = other.m_bNoOptionalAttributeDefaultOutput;
    m_bWriteDefaultElementValues = other.m_bWriteDefaultElementValues;
    m_bExactValues = other.m_bExactValues;
    m_bStripCDATA = other.m_bStripCDATA;
    m_strIndentChars = other.m_strIndentChars;
    m_readLimits = other.m_readLimits;
    return *this;
}

CSerializationContext::~CSerializationContext()
{
    FIOptions::Replace(m_pFIContext, nullptr);
    JsonOptions::Replace(m_pJsonContext, nullptr);
    ReplaceAttributes(m_spAdditionalRootAttributes, nullptr);
}

CSerializationContext & CSerializationContext::GetDefaultContext()
{
    return m_defaultContext;
}

void CSerializationContext::SetIgnoreMissingMandatoryElements(bool bValue)
{
    if (bValue && m_bIgnoreUnknownElements)
        throw CQzInvalidStateException(
            u"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, "
            u"you can not ignore both\n"
            u"Set IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true");
    m_bIgnoreMissingMandatoryElements = bValue;
}

void CSerializationContext::SetIgnoreUnknownElements(bool bValue)
{
    if (bValue && m_bIgnoreMissingMandatoryElements)
        throw CQzInvalidStateException(
            u"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, "
            u"you can not ignore both\n"
            u"Set IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true");
    m_bIgnoreUnknownElements = bValue;
}

void CSerializationContext::SetDefaultNamespaceURI(char16_t const * uri)
{
    m_strDefaultNamespaceURI = OrEmpty(uri);
}

void CSerializationContext::SetInLineSchema(char16_t const * text)
{
    m_strInLineSchema = OrEmpty(text);
}

void CSerializationContext::SetIndentChars(char16_t const * text)
{
    std::u16string strText(OrEmpty(text));
    if (strText.find_first_not_of(u" \t") != std::u16string::npos)
        throw CQzInvalidParamException(u"IndentChars can only contain Whitespace characters, i.e. \\t or spaces");
    m_strIndentChars = std::move(strText);
}

CSmartPtr<CAttributeCol> CSerializationContext::GetAdditionalRootAttributes() const
{
    CAttributeCol * pAttributes = FindAdditionalRootAttributes();
    if (pAttributes == nullptr)
    {
        CSmartPtr<CAttributeCol> const spNew(new CAttributeCol(u"", u"##any", u""));
        // When two threads create it at once, one collection stays.
        if (m_spAdditionalRootAttributes.compare_exchange_strong(pAttributes, spNew, std::memory_order_acq_rel))
        {
            spNew->AddRef();
            return spNew;
        }
    }
    return pAttributes;
}

CFastInfosetContext & CSerializationContext::GetFIContext() const
{
    return FIOptions::Get(m_pFIContext);
}

CJsonContext & CSerializationContext::GetJsonContext() const
{
    return JsonOptions::Get(m_pJsonContext);
}

} // namespace QzXmlLib16
