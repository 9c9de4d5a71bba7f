#include "qzxmllib/support/KeyedHashInternal.h"

#include <random>

namespace QzXmlLib16
{

CKeyedHash::CKeyedHash()
{
    static Key const s_key = []
    {
        std::random_device device;
        auto const draw = [&device] { return std::uint64_t(device()) << 32 | device(); };
        return Key{draw(), draw(), draw() | 1};
    }();
    m_key = s_key;
}

} // namespace QzXmlLib16
