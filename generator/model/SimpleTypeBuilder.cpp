#include "generator/model/SimpleTypeBuilder.h"

#include "generator/schema/Annotations.h"
#include "generator/schema/XercesText.h"

#include <algorithm>
#include <iterator>
#include <xercesc/framework/psvi/XSAnnotation.hpp>
#include <xercesc/framework/psvi/XSFacet.hpp>
#include <xercesc/framework/psvi/XSMultiValueFacet.hpp>
#include <xercesc/framework/psvi/XSSimpleTypeDefinition.hpp>

namespace QzXmlGen
{

namespace
{

using xercesc::XSSimpleTypeDefinition;

constexpr char kSchemaNamespace[] = "http://www.w3.org/2001/XMLSchema";

struct BuiltInRow
{
    char const * pszName;
    /// The enumerator of ItemType without its prefix.
    char const * pszKind;
    char const * pszWhitespace;
    /// Facets that the kind itself does not check, by their text.
    char const * pszMinInclusive;
    char const * pszMaxInclusive;
    char const * pszPattern;
};

// The kinds of integers check their own ranges. What else a built-in type demands of a text stands here.
constexpr char kName[] = "\\i\\c*";
constexpr char kNCName[] = "[\\i-[:]][\\c-[:]]*";
constexpr char kLanguage[] = "[a-zA-Z]{1,8}(-[a-zA-Z0-9]{1,8})*";
constexpr BuiltInRow kBuiltIns[] = {
    {"string", "string", "Preserve", nullptr, nullptr, nullptr},
    {"normalizedString", "string", "Replace", nullptr, nullptr, nullptr},
    {"token", "string", "Collapse", nullptr, nullptr, nullptr},
    {"language", "string", "Collapse", nullptr, nullptr, kLanguage},
    {"Name", "string", "Collapse", nullptr, nullptr, kName},
    {"NMTOKEN", "string", "Collapse", nullptr, nullptr, "\\c+"},
    {"NCName", "string", "Collapse", nullptr, nullptr, kNCName},
    {"ID", "string", "Collapse", nullptr, nullptr, kNCName},
    {"IDREF", "string", "Collapse", nullptr, nullptr, kNCName},
    {"ENTITY", "string", "Collapse", nullptr, nullptr, kNCName},
    {"anyURI", "string", "Collapse", nullptr, nullptr, nullptr},
    {"QName", "string", "Collapse", nullptr, nullptr, "([\\i-[:]][\\c-[:]]*:)?[\\i-[:]][\\c-[:]]*"},
    {"NOTATION", "string", "Collapse", nullptr, nullptr, nullptr},
    {"anySimpleType", "string", "Preserve", nullptr, nullptr, nullptr},
    {"boolean", "boolean", "Collapse", nullptr, nullptr, nullptr},
    {"decimal", "decimal", "Collapse", nullptr, nullptr, nullptr},
    {"float", "r4", "Collapse", nullptr, nullptr, nullptr},
    {"double", "r8", "Collapse", nullptr, nullptr, nullptr},
    {"integer", "integer", "Collapse", nullptr, nullptr, nullptr},
    {"nonPositiveInteger", "integer", "Collapse", nullptr, "0", nullptr},
    {"negativeInteger", "integer", "Collapse", nullptr, "-1", nullptr},
    {"nonNegativeInteger", "integer", "Collapse", "0", nullptr, nullptr},
    {"positiveInteger", "integer", "Collapse", "1", nullptr, nullptr},
    {"byte", "i1", "Collapse", nullptr, nullptr, nullptr},
    {"short", "i2", "Collapse", nullptr, nullptr, nullptr},
    {"int", "i4", "Collapse", nullptr, nullptr, nullptr},
    {"long", "i8", "Collapse", nullptr, nullptr, nullptr},
    {"unsignedByte", "ui1", "Collapse", nullptr, nullptr, nullptr},
    {"unsignedShort", "ui2", "Collapse", nullptr, nullptr, nullptr},
    {"unsignedInt", "ui4", "Collapse", nullptr, nullptr, nullptr},
    {"unsignedLong", "ui8", "Collapse", nullptr, nullptr, nullptr},
    {"dateTime", "datetime", "Collapse", nullptr, nullptr, nullptr},
    {"date", "date", "Collapse", nullptr, nullptr, nullptr},
    {"time", "time", "Collapse", nullptr, nullptr, nullptr},
    {"gYearMonth", "yearMonth", "Collapse", nullptr, nullptr, nullptr},
    {"gMonthDay", "monthDay", "Collapse", nullptr, nullptr, nullptr},
    {"gYear", "year", "Collapse", nullptr, nullptr, nullptr},
    {"gMonth", "month", "Collapse", nullptr, nullptr, nullptr},
    {"gDay", "day", "Collapse", nullptr, nullptr, nullptr},
    {"duration", "duration", "Collapse", nullptr, nullptr, nullptr},
    {"hexBinary", "hexBinary", "Collapse", nullptr, nullptr, nullptr},
    {"base64Binary", "base64Binary", "Collapse", nullptr, nullptr, nullptr},
};

struct FacetRow
{
    XSSimpleTypeDefinition::FACET eFacet;
    std::optional<std::string> FacetSet::*pValue;
    /// The facet that bounds the same end: the first of the two that is met is the tighter one.
    std::optional<std::string> FacetSet::*pSameEnd;
};

constexpr FacetRow kFacets[] = {
    {XSSimpleTypeDefinition::FACET_LENGTH, &FacetSet::length, &FacetSet::length},
    {XSSimpleTypeDefinition::FACET_MINLENGTH, &FacetSet::minLength, &FacetSet::minLength},
    {XSSimpleTypeDefinition::FACET_MAXLENGTH, &FacetSet::maxLength, &FacetSet::maxLength},
    {XSSimpleTypeDefinition::FACET_MININCLUSIVE, &FacetSet::minInclusive, &FacetSet::minExclusive},
    {XSSimpleTypeDefinition::FACET_MINEXCLUSIVE, &FacetSet::minExclusive, &FacetSet::minInclusive},
    {XSSimpleTypeDefinition::FACET_MAXINCLUSIVE, &FacetSet::maxInclusive, &FacetSet::maxExclusive},
    {XSSimpleTypeDefinition::FACET_MAXEXCLUSIVE, &FacetSet::maxExclusive, &FacetSet::maxInclusive},
    {XSSimpleTypeDefinition::FACET_TOTALDIGITS, &FacetSet::totalDigits, &FacetSet::totalDigits},
    {XSSimpleTypeDefinition::FACET_FRACTIONDIGITS, &FacetSet::fractionDigits, &FacetSet::fractionDigits},
};

BuiltInRow const * FindBuiltIn(std::string const & strName)
{
    auto const found = std::find_if(
        std::begin(kBuiltIns), std::end(kBuiltIns), [&](BuiltInRow const & row) { return strName == row.pszName; });
    return found == std::end(kBuiltIns) ? nullptr : found;
}

bool IsBuiltIn(XSSimpleTypeDefinition & definition)
{
    return !definition.getAnonymous() && ToUtf8(definition.getNamespace()) == kSchemaNamespace;
}

std::vector<std::string> ToStrings(xercesc::StringList * pValues)
{
    std::vector<std::string> values;
    for (XMLSize_t n = 0; pValues != nullptr && n < pValues->size(); ++n)
        values.push_back(ToUtf8(pValues->elementAt(n)));
    return values;
}

/// Takes out the patterns by which the parser checks built-in types, as xs:integer: derived types repeat them.
void DropPatternsOfBuiltIns(SimpleType & type, XSSimpleTypeDefinition * pStep)
{
    while (pStep != nullptr)
    {
        auto * const pLists = pStep->getMultiValueFacets();
        for (XMLSize_t i = 0; pLists != nullptr && i < pLists->size(); ++i)
        {
            auto & patterns = type.facets.patterns;
            patterns.erase(
                std::remove(patterns.begin(), patterns.end(), ToStrings(pLists->elementAt(i)->getLexicalFacetValues())),
                patterns.end());
        }
        auto * const pBase = pStep->getBaseType();
        bool const bUp =
            pBase != nullptr && pBase != pStep && pBase->getTypeCategory() == xercesc::XSTypeDefinition::SIMPLE_TYPE;
        pStep = bUp ? static_cast<XSSimpleTypeDefinition *>(pBase) : nullptr;
    }
}

void SetBuiltIn(SimpleType & type, BuiltInRow const & row)
{
    type.strKind = row.pszKind;
    if (type.strWhitespace.empty())
        type.strWhitespace = row.pszWhitespace;
    FacetSet & facets = type.facets;
    if (row.pszMinInclusive != nullptr && !facets.minInclusive && !facets.minExclusive)
        facets.minInclusive = row.pszMinInclusive;
    if (row.pszMaxInclusive != nullptr && !facets.maxInclusive && !facets.maxExclusive)
        facets.maxInclusive = row.pszMaxInclusive;
    if (row.pszPattern != nullptr)
        facets.patterns.push_back({row.pszPattern});
}

} // namespace

SimpleType * CSimpleTypeBuilder::Build(XSSimpleTypeDefinition & definition)
{
    bool const bNamed = !definition.getAnonymous();
    SchemaName const name =
        bNamed ? SchemaName{ToUtf8(definition.getNamespace()), ToUtf8(definition.getName())} : SchemaName{};
    SimpleType *& pBuilt = bNamed ? m_named[name] : m_anonymous[&definition];
    if (pBuilt != nullptr)
        return pBuilt;
    SimpleType & type = *m_model.simpleTypes.emplace_back(std::make_unique<SimpleType>());
    pBuilt = &type;
    type.name = name;
    if (!IsBuiltIn(definition))
    {
        type.position = m_schemas.Find(ComponentKind::Type, type.name.strNamespaceUri, type.name.strLocal);
        type.strDocumentation = m_annotations.GetDocumentation(definition.getAnnotations());
    }
    Fill(type, definition);
    return &type;
}

void CSimpleTypeBuilder::Fill(SimpleType & type, XSSimpleTypeDefinition & definition)
{
    XSSimpleTypeDefinition * pStep = &definition;
    while (pStep != nullptr && !IsBuiltIn(*pStep))
    {
        AddStep(type, *pStep);
        auto * const pBase = pStep->getBaseType();
        bool const bDerived = pBase != nullptr && pBase != pStep &&
                              pBase->getTypeCategory() == xercesc::XSTypeDefinition::SIMPLE_TYPE &&
                              static_cast<XSSimpleTypeDefinition *>(pBase)->getVariety() == pStep->getVariety();
        pStep = bDerived ? static_cast<XSSimpleTypeDefinition *>(pBase) : nullptr;
    }
    DropPatternsOfBuiltIns(type, pStep);
    // IDREFS, NMTOKENS and ENTITIES are lists that are built in.
    switch (definition.getVariety())
    {
    case XSSimpleTypeDefinition::VARIETY_LIST:
        type.eVariety = Variety::List;
        type.strKind = "string";
        type.strWhitespace = "Collapse";
        if (definition.getItemType() != nullptr)
            type.pItem = Build(*definition.getItemType());
        if (pStep != nullptr && !type.facets.minLength && !type.facets.length)
            type.facets.minLength = "1";
        break;
    case XSSimpleTypeDefinition::VARIETY_UNION:
        type.eVariety = Variety::Union;
        type.strKind = "string";
        type.strWhitespace = "Preserve";
        if (auto * const pMembers = definition.getMemberTypes())
            for (XMLSize_t i = 0; i < pMembers->size(); ++i)
                type.members.push_back(Build(*pMembers->elementAt(i)));
        break;
    default:
        if (BuiltInRow const * pRow = pStep != nullptr ? FindBuiltIn(ToUtf8(pStep->getName())) : nullptr)
            SetBuiltIn(type, *pRow);
        else
            SetBuiltIn(type, *FindBuiltIn("anySimpleType"));
        break;
    }
    type.bEnumClass = type.eVariety == Variety::Atomic && type.strKind == "string" && !type.enumeration.empty();
    type.bText = type.eVariety == Variety::Atomic && type.strKind != "string" && IsKeptAsText(type, definition);
    if (type.bEnumClass && IsKeptAsText(type, definition))
        type.bEnumClass = false;
    type.bDescribed =
        type.eVariety != Variety::Atomic || type.bText || !type.facets.IsEmpty() || !type.enumeration.empty();
}

void CSimpleTypeBuilder::AddStep(SimpleType & type, XSSimpleTypeDefinition & definition)
{
    if (auto * const pFacets = definition.getFacets())
        for (XMLSize_t i = 0; i < pFacets->size(); ++i)
        {
            auto const & facet = *pFacets->elementAt(i);
            std::string const strValue = ToUtf8(facet.getLexicalFacetValue());
            for (FacetRow const & row : kFacets)
                if (facet.getFacetKind() == row.eFacet && !(type.facets.*row.pValue) && !(type.facets.*row.pSameEnd))
                    type.facets.*row.pValue = strValue;
            if (facet.getFacetKind() == XSSimpleTypeDefinition::FACET_WHITESPACE && type.strWhitespace.empty())
                type.strWhitespace = strValue == "preserve"  ? "Preserve"
                                     : strValue == "replace" ? "Replace"
                                                             : "Collapse";
        }
    if (auto * const pLists = definition.getMultiValueFacets())
        for (XMLSize_t i = 0; i < pLists->size(); ++i)
        {
            auto & facet = *pLists->elementAt(i);
            std::vector<std::string> values = ToStrings(facet.getLexicalFacetValues());
            if (facet.getFacetKind() == XSSimpleTypeDefinition::FACET_PATTERN)
            {
                // The parser repeats the patterns of the base, also those by which it checks built-in types itself.
                if (std::find(type.facets.patterns.begin(), type.facets.patterns.end(), values) ==
                    type.facets.patterns.end())
                    type.facets.patterns.push_back(std::move(values));
            }
            else if (type.enumeration.empty())
            {
                auto * const pNotes = facet.getAnnotations();
                for (std::size_t n = 0; n < values.size(); ++n)
                {
                    bool const bNoted = pNotes != nullptr && pNotes->size() == values.size();
                    type.enumeration.push_back(
                        {values[n], bNoted ? m_annotations.GetDocumentation(pNotes->elementAt(n)) : std::string(), {}});
                }
            }
        }
}

bool CSimpleTypeBuilder::IsKeptAsText(SimpleType const & type, XSSimpleTypeDefinition & definition) const
{
    // A pattern may demand a spelling that a value does not keep, as leading zeros or a zone of its own.
    if (type.strKind != "string" && !type.facets.patterns.empty())
        return true;
    for (xercesc::XSTypeDefinition * pStep = &definition; pStep != nullptr; pStep = pStep->getBaseType())
    {
        std::string const strName = ToUtf8(pStep->getName());
        if (!pStep->getAnonymous() &&
            (m_asText.count(strName) != 0 || m_asText.count('{' + ToUtf8(pStep->getNamespace()) + '}' + strName) != 0))
            return true;
        if (pStep == pStep->getBaseType())
            break;
    }
    return false;
}

} // namespace QzXmlGen
