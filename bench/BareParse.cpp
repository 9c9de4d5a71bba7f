#include "bench/BareParse.h"

#include <expat.h>

#include <cstdio>
#include <cstdlib>

namespace
{

void XMLCALL OnStart(void *, XML_Char const *, XML_Char const **) {}
void XMLCALL OnEnd(void *, XML_Char const *) {}
void XMLCALL OnText(void *, XML_Char const *, int) {}
void XMLCALL OnStartNamespace(void *, XML_Char const *, XML_Char const *) {}
void XMLCALL OnEndNamespace(void *, XML_Char const *) {}

} // namespace

void BareParse(void const * pOctets, std::size_t nOctets)
{
    XML_Parser const parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(parser, &OnStart, &OnEnd);
    XML_SetCharacterDataHandler(parser, &OnText);
    XML_SetNamespaceDeclHandler(parser, &OnStartNamespace, &OnEndNamespace);
    if (XML_Parse(parser, static_cast<char const *>(pOctets), static_cast<int>(nOctets), XML_TRUE) != XML_STATUS_OK)
    {
        std::fprintf(stderr, "bench: %s at line %lu\n", XML_ErrorString(XML_GetErrorCode(parser)),
            static_cast<unsigned long>(XML_GetCurrentLineNumber(parser)));
        std::exit(1);
    }
    XML_ParserFree(parser);
}
