#include "qzxmllib/values/PatternInternal.h"

#include "qzxmllib/document/EncoderInternal.h"
#include "qzxmllib/support/QzException.h"
#include "qzxmllib/values/BinaryData.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <mutex>
#include <new>
#include <unordered_map>

namespace QzXmlLib16
{

namespace
{

// Together these bound what the store can hold.
constexpr std::size_t kMaxPatterns = 256;
constexpr std::size_t kMaxUnitsKept = 4096;

/// What differs between the escapes of XML Schema and those of the engine. All others are handed on as they are, also
/// the subtraction of classes, which the engine does not know. The classes of names count ASCII letters only. The
/// replacement is put in as text, also where the escape stands within brackets. The set, if there is one, takes the
/// same characters without a group.
constexpr struct
{
    std::u16string_view from;
    std::u16string_view to;
    std::u16string_view set;
} kEscapes[] = {
    {u"\\\\", u"\\\\", u""}, // an escaped backslash escapes nothing behind it
    {u"\\i", u"([^\\W\\d]|:)", u"[A-Za-z_:]"},
    {u"\\I", u"([\\W\\d])", u"[\\W\\d]"},
    {u"\\c", u"(\\w|\\.|-|:)", u"[\\w.\\-:]"},
    {u"\\C", u"([^\\w\\.\\-\\:])", u"[^\\w.\\-:]"},
    {u"\\p{IsBasicLatin}", u"[\\000-\\177]", u""},
    {u"\\p{IsLatin-1Supplement}", u"[\\200-\\377]", u""},
    {u"\\p{IsLatinExtended-A}", u"[\\400-\\577]", u""},
    {u"\\p{IsLatinExtended-B}", u"[\\x{180}-\\x{24F}]", u""},
    {u"\x01", u"\\\\", u""},
};

bool IsOneOf(char16_t c, std::u16string_view units)
{
    return units.find(c) != std::u16string_view::npos;
}

/// The length of a named class such as [:alpha:] at the front of a text that stands within brackets, else 0. The engine
/// takes a bracket for the beginning of one only if its end follows before the brackets end.
std::size_t GetNamedClassLength(std::u16string_view text)
{
    if (text.size() < 2 || text[0] != u'[' || !IsOneOf(text[1], u":.="))
        return 0;
    for (std::size_t i = 2; i + 1 < text.size(); ++i)
    {
        if (text[i] == u'\\' && IsOneOf(text[i + 1], u"\\]"))
            ++i;
        else if (text[i] == text[1] && text[i + 1] == u']')
            return i + 2;
        else if (text[i] == u']' || (text[i] == u'[' && text[i + 1] == text[1]))
            return 0;
    }
    return 0;
}

/// Whether sets may stand for groups: nothing in the pattern refers to a group, and no escape that is replaced stands
/// within brackets. A repeated group costs the engine memory for each turn, a repeated set costs none.
bool MayUseSets(std::u16string_view pattern)
{
    // A parenthesis will stand in front of the pattern.
    if (!pattern.empty() && IsOneOf(pattern[0], u"?*"))
        return false;
    bool bInBrackets = false;
    for (std::size_t i = 0; i < pattern.size(); ++i)
    {
        char16_t const cNext = i + 1 < pattern.size() ? pattern[i + 1] : u'\0';
        if (pattern[i] == u'\\')
        {
            // The engine takes no notice of \E, and the unit 1 becomes two backslashes, so brackets end elsewhere.
            if (IsOneOf(cNext, bInBrackets ? u"iIcCpQE\x01" : u"123456789gkQE\x01"))
                return false;
            ++i;
        }
        else if (std::size_t const nNamed = bInBrackets ? GetNamedClassLength(pattern.substr(i)) : 0; nNamed != 0)
            i += nNamed - 1;
        else if (bInBrackets)
            bInBrackets = pattern[i] != u']';
        else if (pattern[i] == u'(' && IsOneOf(cNext, u"?*"))
            return false;
        else if (pattern[i] == u'[')
        {
            bInBrackets = true;
            i += cNext == u'^' ? 1 : 0;
            i += pattern.substr(i + 1, 1) == u"]" ? 1 : 0; // the first bracket stands for itself
        }
    }
    return true;
}

/// The expression for the engine, anchored at both ends.
std::u16string ToPcre(std::u16string_view pattern, bool bUseSets)
{
    std::u16string strOut = u"^(";
    while (!pattern.empty())
    {
        auto const * const pEscape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
            [&](auto const & escape) { return pattern.substr(0, escape.from.size()) == escape.from; });
        bool const bEscape = pEscape != std::end(kEscapes);
        if (!bEscape)
            strOut.push_back(pattern[0]);
        else
            strOut.append(bUseSets && !pEscape->set.empty() ? pEscape->set : pEscape->to);
        pattern.remove_prefix(bEscape ? pEscape->from.size() : 1);
    }
    return strOut.append(u")$");
}

/// The length of the escape at the front of a text if it stands for a set of characters, such as \d or \p{L}, else 0.
std::size_t GetClassEscapeLength(std::u16string_view text)
{
    if (text.size() < 2 || text[0] != u'\\')
        return 0;
    if (text[1] != u'p' && text[1] != u'P')
        return IsOneOf(text[1], u"dDhHsSvVwW") ? 2 : 0;
    std::size_t const nEnd = text.size() > 2 && text[2] == u'{' ? text.find(u'}') : 2;
    return std::min(nEnd, text.size() - 1) + 1;
}

/// Escapes each hyphen within brackets that stands beside an escape for a set, as in [\w-.]. It can only stand for
/// itself there, but the engine refuses it.
std::u16string EscapeHyphens(std::u16string_view text)
{
    std::u16string strOut;
    bool bInBrackets = false;
    bool bBehindClass = false;
    while (!text.empty())
    {
        std::size_t const nNamed = bInBrackets ? GetNamedClassLength(text) : 0;
        std::size_t const nClass = nNamed != 0 ? nNamed : GetClassEscapeLength(text);
        std::size_t nTaken = std::max<std::size_t>(nClass, 1);
        if (nNamed != 0)
            nTaken = nNamed;
        else if (nClass == 0 && text[0] == u'\\' && text.size() > 1)
            nTaken = 2;
        else if (!bInBrackets && text[0] == u'[')
        {
            bInBrackets = true;
            nTaken = text.substr(1, 1) == u"^" ? 2 : 1;
            if (text.substr(nTaken, 1) == u"]")
                ++nTaken;
        }
        else if (text[0] == u']')
            bInBrackets = false;
        else if (bInBrackets && text[0] == u'-' && (bBehindClass || GetClassEscapeLength(text.substr(1)) != 0))
            strOut.push_back(u'\\');
        bBehindClass = nClass != 0;
        strOut.append(text.substr(0, nTaken));
        text.remove_prefix(nTaken);
    }
    return strOut;
}

/// The UTF-8 form of the whole text, code units 0 included.
std::string ToUtf8(std::u16string_view text)
{
    std::string strOut(text.size() * 3, '\0');
    std::size_t nOut = 0;
    for (std::size_t nAt = 0; nAt < text.size();)
    {
        NarrowResult const done =
            NarrowUtf8(text.data() + nAt, text.size() - nAt, reinterpret_cast<unsigned char *>(strOut.data() + nOut));
        nAt += done.nUnits;
        nOut += done.nOctets;
        if (nAt == text.size())
            break;
        if (text[nAt] != 0)
            CountUtf8(text.substr(nAt), nAt); // throws
        strOut[nOut++] = '\0';
        ++nAt;
    }
    strOut.resize(nOut);
    return strOut;
}

pcre2_code * Compile(std::u16string_view expression, int & nError)
{
    std::string const strUtf8 = ToUtf8(expression);
    PCRE2_SIZE nOffset = 0;
    pcre2_code * const pCode = pcre2_compile(
        reinterpret_cast<PCRE2_SPTR>(strUtf8.data()), strUtf8.size(), PCRE2_UTF, &nError, &nOffset, nullptr);
    if (pCode == nullptr && nError == PCRE2_ERROR_HEAP_FAILED)
        throw std::bad_alloc();
    return pCode;
}

template <class T, void (*pfnFree)(T *)>
struct CFree
{
    void operator()(T * p) const noexcept { pfnFree(p); }
};

using CMatchData = std::unique_ptr<pcre2_match_data, CFree<pcre2_match_data, pcre2_match_data_free>>;
using CMatchContext = std::unique_ptr<pcre2_match_context, CFree<pcre2_match_context, pcre2_match_context_free>>;

} // namespace

std::shared_ptr<CPattern const> CPattern::Get(std::u16string const & strPattern)
{
    static std::mutex s_lock;
    static std::unordered_map<std::u16string, std::shared_ptr<CPattern const>> s_patterns;
    {
        std::lock_guard<std::mutex> const lock(s_lock);
        auto const it = s_patterns.find(strPattern);
        if (it != s_patterns.end())
            return it->second;
    }
    auto spPattern = std::make_shared<CPattern const>(strPattern);
    if (strPattern.size() > kMaxUnitsKept)
        return spPattern;
    std::lock_guard<std::mutex> const lock(s_lock);
    if (s_patterns.size() >= kMaxPatterns)
        s_patterns.clear();
    return s_patterns.emplace(strPattern, std::move(spPattern)).first->second;
}

CPattern::CPattern(std::u16string_view pattern)
{
    std::u16string const strExpression = ToPcre(pattern, MayUseSets(pattern));
    int nError = 0;
    pcre2_code * pCode = Compile(strExpression, nError);
    if (pCode == nullptr && nError == PCRE2_ERROR_CLASS_INVALID_RANGE)
        pCode = Compile(EscapeHyphens(strExpression), nError);
    if (pCode == nullptr)
    {
        PCRE2_UCHAR aText[256] = {};
        int const nText = std::max(pcre2_get_error_message(nError, aText, sizeof(aText)), 0);
        // Shown with its groups, whether or not sets stood for them.
        throw CQzException(FormatString(u"Invalid Regular Expression: %s Error: '%s'", ToPcre(pattern, false),
            std::u16string(aText, aText + nText)));
    }
    m_pCode = pCode;
}

CPattern::~CPattern()
{
    pcre2_code_free(static_cast<pcre2_code *>(m_pCode));
}

bool CPattern::Matches(std::u16string_view value) const
{
    std::string const strUtf8 = ToUtf8(value);
    CMatchData const spData(pcre2_match_data_create(1, nullptr));
    CMatchContext const spContext(pcre2_match_context_create(nullptr));
    if (spData == nullptr || spContext == nullptr)
        throw std::bad_alloc();
    // Both limits grow with the value, so that honest long values pass and a pattern that backtracks stays linear.
    std::uint64_t const nSteps = 1000000 + 16 * static_cast<std::uint64_t>(value.size());
    std::uint64_t const nHeapKiB = 64 * 1024 + static_cast<std::uint64_t>(value.size()) / 2 + 1;
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint32_t>::max();
    pcre2_set_match_limit(spContext.get(), static_cast<std::uint32_t>(std::min(nSteps, kMax)));
    pcre2_set_heap_limit(spContext.get(), static_cast<std::uint32_t>(std::min(nHeapKiB, kMax)));
    // Only the whole match is asked for, so 0, which tells that the groups had no room, is a match as well.
    int const nResult =
        pcre2_match(static_cast<pcre2_code const *>(m_pCode), reinterpret_cast<PCRE2_SPTR>(strUtf8.data()),
            strUtf8.size(), 0, PCRE2_ANCHORED | PCRE2_NO_UTF_CHECK, spData.get(), spContext.get());
    if (nResult == PCRE2_ERROR_NOMEMORY)
        throw std::bad_alloc();
    if (nResult < 0)
        return false;
    // "$" is content in front of a last line feed.
    PCRE2_SIZE const * const pRange = pcre2_get_ovector_pointer(spData.get());
    return pRange[0] == 0 && pRange[1] == strUtf8.size();
}

} // namespace QzXmlLib16
