#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

/// Writes purchase orders of orders.xsd of about the size asked for. The same arguments give the same octets.

namespace
{

/// SplitMix64: the same numbers everywhere.
class CRandom
{
public:
    explicit CRandom(std::uint64_t qwSeed) : m_qwState(qwSeed) {}
    /// A number of 0 to nLimit - 1.
    unsigned Below(unsigned nLimit)
    {
        std::uint64_t z = (m_qwState += 0x9E3779B97F4A7C15);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return static_cast<unsigned>(((z ^ (z >> 31)) >> 32) * nLimit >> 32);
    }
    bool OneIn(unsigned n) { return Below(n) == 0; }
    template <std::size_t nSize>
    char const * Pick(char const * const (&texts)[nSize])
    {
        return texts[Below(nSize)];
    }

private:
    std::uint64_t m_qwState;
};

constexpr char const * kFirstNames[] = {"Anna", "Ben", "Carla", "David", "Elif", "Frank", "Grace", "Hugo", "Ines",
    "Jonas", "Karin", "Luis", "Mia", "Noah", "Olga", "Paul", "René", "Sofia", "Tim", "Zoë"};
constexpr char const * kLastNames[] = {"Adams", "Baker", "Costa", "Dubois", "Evans", "Fischer", "Garcia", "Huber",
    "Ivanova", "Jensen", "Keller", "Lopez", "Müller", "Novak", "Olsen", "Peters", "Rossi", "Schmidt", "Tanaka",
    "Weber"};
constexpr char const * kStreets[] = {"Main Street", "Station Road", "Park Avenue", "Mill Lane", "Bahnhofstrasse",
    "Rue du Lac", "Elm Street", "Harbour Way"};
constexpr char const * kCities[] = {
    "Springfield", "Riverton", "Lakewood", "Zürich", "Bristol", "Aarhus", "Lyon", "Porto", "Graz", "Oakdale"};
constexpr char const * kStates[] = {"CA", "NY", "TX", "WA", "OR", "FL"};
constexpr char const * kCountries[] = {"US", "CH", "GB", "DK", "FR", "PT", "AT"};
constexpr char const * kAdjectives[] = {"Compact", "Solid", "Wireless", "Folding", "Heavy-duty", "Slim", "Outdoor",
    "Adjustable", "Stainless", "Rechargeable"};
constexpr char const * kProducts[] = {"Lawnmower", "Desk Lamp", "Water Bottle", "Keyboard", "Office Chair", "Backpack",
    "Drill Set", "Monitor Stand", "Coffee Maker", "Garden Hose"};
constexpr char const * kRemarks[] = {"Confirm this is electric", "Please wrap as a gift", "Leave at the back door",
    "Handle with care: glass & ceramics", "Replaces an earlier order", "Call before delivery",
    "Size < 40 cm, please measure again", "Ship together with the other items of this order"};
constexpr char const * kStatuses[] = {"open", "packed", "shipped", "closed"};

class CGenerator
{
public:
    CGenerator(std::uint64_t qwSeed, bool bIndent) : m_random(qwSeed), m_bIndent(bIndent) {}

    void Write(std::uint64_t qwSize)
    {
        m_strOut =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<orders xmlns=\"urn:example:orders:v1\" version=\"1.0\">";
        m_nDepth = 1;
        std::uint64_t qwWritten = 0;
        for (unsigned nId = 100001; qwWritten + m_strOut.size() < qwSize || nId == 100001; ++nId)
        {
            Order(nId);
            if (m_strOut.size() > 1 << 20)
                qwWritten += Flush();
        }
        m_nDepth = 0;
        Close("orders");
        m_strOut += '\n';
        Flush();
    }

private:
    std::size_t Flush()
    {
        std::size_t const nSize = m_strOut.size();
        if (std::fwrite(m_strOut.data(), 1, nSize, stdout) != nSize)
        {
            std::perror("make_orders");
            std::exit(1);
        }
        m_strOut.clear();
        return nSize;
    }

    void Line()
    {
        if (!m_bIndent)
            return;
        m_strOut += '\n';
        m_strOut.append(2 * m_nDepth, ' ');
    }
    void Text(char const * pszText)
    {
        for (; *pszText != 0; ++pszText)
        {
            if (*pszText == '&')
                m_strOut += "&amp;";
            else if (*pszText == '<')
                m_strOut += "&lt;";
            else
                m_strOut += *pszText;
        }
    }
    void Open(std::string const & strTag)
    {
        Line();
        m_strOut += '<' + strTag + '>';
        ++m_nDepth;
    }
    void Close(char const * pszName)
    {
        Line();
        m_strOut.append("</").append(pszName) += '>';
    }
    void End(char const * pszName)
    {
        --m_nDepth;
        Close(pszName);
    }
    void Leaf(char const * pszName, std::string const & strText)
    {
        Line();
        m_strOut.append("<").append(pszName) += '>';
        Text(strText.c_str());
        m_strOut.append("</").append(pszName) += '>';
    }

    /// Unlike the operands of +, the members of a list are made in their order, on which the random numbers depend.
    static std::string Join(std::initializer_list<std::string> parts)
    {
        std::string strText;
        for (std::string const & strPart : parts)
            strText += strPart;
        return strText;
    }
    std::string Number(unsigned nLow, unsigned nHigh)
    {
        return std::to_string(nLow + m_random.Below(nHigh - nLow + 1));
    }
    static std::string Padded(unsigned nValue, int nWidth)
    {
        char szText[16];
        std::snprintf(szText, sizeof szText, "%0*u", nWidth, nValue);
        return szText;
    }
    std::string Money(unsigned nCents) { return std::to_string(nCents / 100) + '.' + Padded(nCents % 100, 2); }
    std::string Date()
    {
        return Join({"2024-", Padded(1 + m_random.Below(12), 2), "-", Padded(1 + m_random.Below(28), 2)});
    }
    std::string Time()
    {
        return Join(
            {Padded(m_random.Below(24), 2), ":", Padded(m_random.Below(60), 2), ":", Padded(m_random.Below(60), 2)});
    }
    std::string Name() { return Join({m_random.Pick(kFirstNames), " ", m_random.Pick(kLastNames)}); }

    void Address(char const * pszName)
    {
        Open(std::string(pszName) + " country=\"" + m_random.Pick(kCountries) + '"');
        Leaf("name", Name());
        Leaf("street", Join({Number(1, 250), " ", m_random.Pick(kStreets)}));
        Leaf("city", m_random.Pick(kCities));
        if (!m_random.OneIn(3))
            Leaf("state", m_random.Pick(kStates));
        Leaf("zip", Number(10000, 99999));
        End(pszName);
    }

    /// Gives the price of the line in cents.
    unsigned Item(unsigned nLine)
    {
        Open(Join({"item line=\"", std::to_string(nLine), "\" partNumber=\"", Number(100, 999), "-",
            std::string(1, static_cast<char>('A' + m_random.Below(26))), "\""}));
        Leaf("productName", Join({m_random.Pick(kAdjectives), " ", m_random.Pick(kProducts)}));
        unsigned const nQuantity = 1 + m_random.Below(20);
        unsigned const nCents = 99 + m_random.Below(29900);
        Leaf("quantity", std::to_string(nQuantity));
        Leaf("unitPrice", Money(nCents));
        if (m_random.OneIn(4))
            Leaf("discount", Money(5 * m_random.Below(40)));
        Leaf("weight", Join({Number(0, 40), ".", Number(1, 9), Number(1, 9)}));
        Leaf("inStock", m_random.OneIn(5) ? "false" : "true");
        if (!m_random.OneIn(3))
            Leaf("shipDate", Date());
        if (m_random.OneIn(4))
            Leaf("note", m_random.Pick(kRemarks));
        End("item");
        return nQuantity * nCents;
    }

    void Order(unsigned nId)
    {
        std::string strTag = "order id=\"" + std::to_string(nId) + "\" status=\"" + m_random.Pick(kStatuses) + '"';
        if (m_random.OneIn(3))
            strTag += " priority=\"" + Number(1, 5) + '"';
        Open(strTag);
        std::string const strDate = Date();
        Leaf("orderDate", strDate);
        Leaf("created", Join({strDate, "T", Time(), m_random.OneIn(2) ? "Z" : "-05:00"}));
        Open("customer number=\"" + Number(1000, 999999) + '"');
        Leaf("name", Name());
        Leaf("email", "customer" + Number(1000, 999999) + "@example.org");
        if (m_random.OneIn(2))
            Leaf("phone", Join({"555 ", Number(100, 999), " ", Number(1000, 9999)}));
        End("customer");
        Address("shipTo");
        if (m_random.OneIn(3))
            Address("billTo");
        Open("items");
        unsigned nTotal = 0;
        unsigned const nItems = 1 + m_random.Below(6);
        for (unsigned n = 1; n <= nItems; ++n)
            nTotal += Item(n);
        End("items");
        Leaf("total", Money(nTotal));
        Leaf("paid", m_random.OneIn(2) ? "true" : "false");
        if (m_random.OneIn(4))
            Leaf("comment", m_random.Pick(kRemarks));
        End("order");
    }

    CRandom m_random;
    bool m_bIndent;
    std::size_t m_nDepth = 0;
    std::string m_strOut;
};

} // namespace

int main(int argc, char ** argv)
{
    bool const bCompact = argc > 1 && std::strcmp(argv[argc - 1], "--compact") == 0;
    int const nArguments = argc - bCompact;
    char * pszUnit = nullptr;
    double size = nArguments > 1 ? std::strtod(argv[1], &pszUnit) : 0;
    switch (pszUnit != nullptr ? *pszUnit : 0)
    {
    case 'K':
        size *= 1e3;
        break;
    case 'M':
        size *= 1e6;
        break;
    case 'G':
        size *= 1e9;
        break;
    }
    if (size < 1 || nArguments > 3)
    {
        std::fprintf(stderr, "usage: make_orders SIZE[K|M|G] [SEED] [--compact] > FILE\n");
        return 2;
    }
    CGenerator(nArguments > 2 ? std::strtoull(argv[2], nullptr, 10) : 1, !bCompact)
        .Write(static_cast<std::uint64_t>(size));
    return 0;
}
