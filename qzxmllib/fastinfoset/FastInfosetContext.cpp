#include "qzxmllib/fastinfoset/FastInfosetContext.h"

#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/ItemType.h"

#include <algorithm>
#include <limits>

namespace QzXmlLib16
{

namespace
{

using Kind = CFastInfosetContext::EncodedCharacterStringKind;

struct SuggestedValue
{
    ItemType eType;
    Kind eKind;
    std::uint32_t dwIndex;
};

constexpr SuggestedValue kSuggestedValues[] = {
    {ItemType_hexBinary, CFastInfosetContext::ECS_EncodingAlgorithm, 1},
    {ItemType_base64Binary, CFastInfosetContext::ECS_EncodingAlgorithm, 2},
    {ItemType_i1, CFastInfosetContext::ECS_EncodingAlgorithm, 3},
    {ItemType_i2, CFastInfosetContext::ECS_EncodingAlgorithm, 3},
    {ItemType_i4, CFastInfosetContext::ECS_EncodingAlgorithm, 4},
    {ItemType_i8, CFastInfosetContext::ECS_EncodingAlgorithm, 5},
    {ItemType_ui1, CFastInfosetContext::ECS_EncodingAlgorithm, 3},
    {ItemType_ui2, CFastInfosetContext::ECS_EncodingAlgorithm, 4},
    {ItemType_ui4, CFastInfosetContext::ECS_EncodingAlgorithm, 5},
    {ItemType_ui8, CFastInfosetContext::ECS_EncodingAlgorithm, 5},
    {ItemType_r4, CFastInfosetContext::ECS_EncodingAlgorithm, 7},
    {ItemType_r8, CFastInfosetContext::ECS_EncodingAlgorithm, 8},
    {ItemType_duration, CFastInfosetContext::ECS_DefaultEncoding, 0},
    {ItemType_yearMonth, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_monthDay, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_year, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_month, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_day, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_date, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_datetime, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_time, CFastInfosetContext::ECS_RestrictedAlphabet, 2},
    {ItemType_boolean, CFastInfosetContext::ECS_EncodingAlgorithm, 6},
    {ItemType_decimal, CFastInfosetContext::ECS_RestrictedAlphabet, 1},
    {ItemType_integer, CFastInfosetContext::ECS_RestrictedAlphabet, 1},
};

/// A limit that no string reaches stays one.
std::uint32_t Clamp(unsigned long nUnits)
{
    return static_cast<std::uint32_t>(std::min<unsigned long>(nUnits, std::numeric_limits<std::uint32_t>::max()));
}

} // namespace

CFastInfosetContext::CFastInfosetContext() = default;
CFastInfosetContext & CFastInfosetContext::operator=(CFastInfosetContext const & other) = default;
CFastInfosetContext::~CFastInfosetContext() = default;

void CFastInfosetContext::SetEncoding(unsigned long nItemType, EncodedCharacterString const & encoding)
{
    if (nItemType >= kItemTypes)
        throw CQzInvalidParamException(FormatString(u"Invalid Type %d", static_cast<std::int64_t>(nItemType)));
    m_encodings[nItemType] = encoding;
}

void CFastInfosetContext::SetSuggestedValues()
{
    for (SuggestedValue const & value : kSuggestedValues)
        m_encodings[value.eType] = {value.eKind, value.dwIndex};
}

void CFastInfosetContext::SetAttributeMaxAddLength(unsigned long nUnits)
{
    m_dwAttributeMaxAddLength = Clamp(nUnits);
}

void CFastInfosetContext::SetElementMaxAddLength(unsigned long nUnits)
{
    m_dwElementMaxAddLength = Clamp(nUnits);
}

} // namespace QzXmlLib16
