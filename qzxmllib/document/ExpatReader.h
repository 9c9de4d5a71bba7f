#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>

struct XML_ParserStruct;

namespace QzXmlLib16
{

class CEntityDepth;
class CParserMemory;
class CSurrogateCheck;

/// Turns the events of the XML parser into the tree of a document. Call Init, then Parse for each piece of the input;
/// after the last piece or a failure the reader can only be destroyed.
class QZXMLLIB_API CExpatReader : public CInstanceMonitor
{
public:
    explicit CExpatReader(CXmlDocument & doc);
    CExpatReader(CExpatReader const &) = delete;
    CExpatReader & operator=(CExpatReader const &) = delete;
    ~CExpatReader() override;

    void Init();
    /// Takes the next piece; null counts as empty. A fault of the text throws CQzException "%s at line %d"; what the
    /// element-complete function of the document has thrown comes out of here unchanged.
    void Parse(unsigned char const * pOctets, std::size_t nOctets, bool bFinal);

private:
    static void StartDocumentTypeHandler(
        void * pThis, char const * pszName, char const * pszSystemId, char const * pszPublicId, int bInternalSubset);
    static void EntityHandler(void * pThis, char const * pszName, int bParameter, char const * pValue, int nOctets,
        char const * pszBase, char const * pszSystemId, char const * pszPublicId, char const * pszNotation);
    static void StartElementHandler(void * pThis, char const * pszName, char const ** ppszAttributes);
    static void EndElementHandler(void * pThis, char const * pszName);
    static void StartNamespaceHandler(void * pThis, char const * pszPrefix, char const * pszUri);
    static void EndNamespaceHandler(void * pThis, char const * pszPrefix);
    static void CharacterDataHandler(void * pThis, char const * pText, int nOctets);
    static void StartCdataHandler(void * pThis);
    static void EndCdataHandler(void * pThis);

    template <class F>
    void Guard(F const & handle);
    void Fail();
    void CheckDepth() const;
    int GetLine() const;
    void CountAttribute(std::size_t nOctets);
    void CheckSurrogates(unsigned char const * pOctets, std::size_t nOctets, bool bFinal);
    bool HoldText(char const * pText, std::size_t nOctets) noexcept;
    void FlushText();
    void AppendMark(char16_t const * pMark);
    void FreeParser();

    CXmlDocument & m_doc;
    std::unique_ptr<CParserMemory> m_spMemory;
    XML_ParserStruct * m_parser = nullptr;
    std::size_t m_nMaxDepth = 0;
    std::uint32_t m_nMaxEntityDepth = 0;
    bool m_bAllowDocumentType = true;
    std::unique_ptr<CEntityDepth> m_spEntityDepth; ///< null before the first declaration
    /// Units of attributes so far, and octets of input.
    std::uint64_t m_nAttributeUnits = 0;
    std::uint64_t m_nInput = 0;
    std::unique_ptr<CSurrogateCheck> m_spSurrogates; ///< null unless the input is UTF-16
    /// What a handler has thrown. No exception passes through the frames of the parser.
    std::exception_ptr m_pFailure;

    /// Text of the open element that is still to be appended. The parser gives text in small pieces.
    static constexpr std::size_t kMostHeld = 256;
    std::size_t m_nHeld = 0;
    char m_aHeld[kMostHeld];
};

} // namespace QzXmlLib16
