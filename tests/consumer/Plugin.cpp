#include "Person.h"

/// A plug-in that is linked with the library, for a program that is not.
extern "C" int RoundTrip()
{
    using namespace QzXmlLib16;
    CSmartPtr<CPerson> spPerson(new CPerson);
    spPerson->m_strName = u"Ada";
    CSmartPtr<CPerson> spCopy(new CPerson);
    spCopy->FromXmlStream(spPerson->ToFastInfosetStream());
    return spCopy->m_strName == u"Ada" ? 0 : 1;
}
