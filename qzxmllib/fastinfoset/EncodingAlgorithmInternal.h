#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

/// What CFastInfosetBinaryData::GetAsString gives for these octets.
std::u16string TextOfAlgorithm(std::uint32_t dwIndex, unsigned char const * pOctets, std::size_t nOctets);

/// What CFastInfosetBinaryData::SetAsEncodedString makes of the text up to its first code unit 0. The old octets are
/// gone first.
void EncodeByAlgorithm(std::uint32_t dwIndex, std::u16string_view text, std::vector<unsigned char> & octets);

} // namespace QzXmlLib16
