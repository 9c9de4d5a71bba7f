#pragma once

#include <cstddef>

/// What the parser alone costs: a parse with namespace processing and handlers that do nothing. Ends the program when
/// the octets are not well-formed.
void BareParse(void const * pOctets, std::size_t nOctets);
