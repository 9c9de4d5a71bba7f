#include "qzxmllib/document/NamespaceIndexInternal.h"

#include <algorithm>

namespace QzXmlLib16
{

namespace
{

constexpr std::size_t kLetters = 26;
constexpr std::size_t kFewestLetters = 2;
/// More than are ever generated.
constexpr std::size_t kMostLetters = 8;
constexpr std::size_t kNoNumber = ~std::size_t(0);

/// The place of an alias among all that can be generated, or kNoNumber for any other text.
std::size_t NumberOf(std::u16string_view alias) noexcept
{
    if (alias.size() < kFewestLetters || alias.size() > kMostLetters)
        return kNoNumber;
    std::size_t nNumber = 0;
    std::size_t nShorter = 0;
    std::size_t nOfLength = kLetters;
    for (std::size_t i = 0; i < alias.size(); ++i)
    {
        if (alias[i] < u'A' || alias[i] > u'Z')
            return kNoNumber;
        nNumber = nNumber * kLetters + static_cast<std::size_t>(alias[i] - u'A');
        if (i + 1 >= kFewestLetters && i + 1 < alias.size())
            nShorter += nOfLength *= kLetters;
    }
    return nShorter + nNumber;
}

} // namespace

void CNamespaceIndex::Declare(std::u16string const & strUri, std::u16string const & strAlias)
{
    auto const [it, bNew] = m_byUri.try_emplace(strUri);
    try
    {
        Count(strAlias);
        it->second.push_back(&strAlias);
    }
    catch (...)
    {
        // Half a declaration would hide the look-up of all that follow.
        Clear();
        throw;
    }
    if (!bNew)
        Uncount(*it->second[it->second.size() - 2]);
}

void CNamespaceIndex::Retract(std::u16string const & strUri) noexcept
{
    auto const it = m_byUri.find(strUri);
    if (it == m_byUri.end())
        return;
    Uncount(*it->second.back());
    it->second.pop_back();
    if (it->second.empty())
        m_byUri.erase(it);
    else
        Count(*it->second.back());
}

void CNamespaceIndex::Clear() noexcept
{
    m_byUri.clear();
    m_uses.clear();
    m_nFirstFree = 0;
}

void CNamespaceIndex::Count(std::u16string const & strAlias)
{
    std::size_t const nNumber = NumberOf(strAlias);
    if (nNumber != kNoNumber)
        ++m_uses[nNumber];
}

void CNamespaceIndex::Uncount(std::u16string const & strAlias) noexcept
{
    std::size_t const nNumber = NumberOf(strAlias);
    if (nNumber == kNoNumber || --m_uses.find(nNumber)->second != 0)
        return;
    m_nFirstFree = std::min(m_nFirstFree, nNumber);
}

std::u16string CNamespaceIndex::ToAlias(std::size_t nNumber)
{
    std::size_t nLetters = kFewestLetters;
    std::size_t nOfLength = kLetters * kLetters;
    for (; nNumber >= nOfLength; ++nLetters, nOfLength *= kLetters)
        nNumber -= nOfLength;
    std::u16string strAlias(nLetters, u'A');
    for (std::size_t i = nLetters; i-- > 0; nNumber /= kLetters)
        strAlias[i] = static_cast<char16_t>(u'A' + nNumber % kLetters);
    return strAlias;
}

std::u16string CNamespaceIndex::FirstFreeAlias()
{
    for (;; ++m_nFirstFree)
    {
        auto const it = m_uses.find(m_nFirstFree);
        if (it == m_uses.end() || it->second == 0)
            return ToAlias(m_nFirstFree);
    }
}

} // namespace QzXmlLib16
