#include "Person.h" // the class above, tests/consumer/Person.h

int main()
{
    using namespace QzXmlLib16;

    CSmartPtr<CPerson> spAda(new CPerson);
    spAda->m_nId = 7;
    spAda->m_strName = u"Ada";
    std::u16string const strXml = spAda->ToXml(); // <AA:person xmlns:AA="urn:example:people" id="7">...

    CBinaryData const octets = spAda->ToFastInfosetStream(); // also ToXmlStream, ToJsonStream, and all to files

    CSmartPtr<CPerson> spCopy(new CPerson);
    try
    {
        spCopy->FromXml(strXml.c_str());
        spCopy->FromXmlStream(octets); // XML or Fast Infoset, plain or compressed; also FromXmlFile, FromJsonStream
    }
    catch (CQzException const &) // GetFullMessage() tells what is wrong, GetPath() where
    {
        return 1;
    }
    return spCopy->m_nId == 7 && spCopy->m_strName == u"Ada" ? 0 : 1;
}
