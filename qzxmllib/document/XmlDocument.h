#pragma once

#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/Forward.h"
#include "qzxmllib/support/MemoryLeakHelp.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace QzXmlLib16
{

class CXmlTree;

/// True makes CXmlDocument::Load read files in chunks while it parses. Process-wide, false at first; settle it before
/// concurrent work starts.
QZXMLLIB_API void AsyncFromXmlFile(bool bAsync);

/// Name of elements and attributes. All nodes of a name point to records of the document, which last until it is loaded
/// again or destroyed; equal pointers mean equal names.
struct CXmlName
{
    explicit CXmlName(std::u16string const & strUri) : strNamespaceURI(strUri) {}

    std::u16string strLocalName;
    /// Empty for no namespace. Belongs to the table of names, which keeps each URI once.
    std::u16string const & strNamespaceURI;
    CXmlDocument * pDocument = nullptr;
    /// What CXmlAttribute::IsNamespaceAttribute and IsNilAttribute answer for attributes of this name.
    bool bNamespaceAttribute = false;
    bool bNilAttribute = false;
    /// The metadata entry that has this very name and was matched with it last, or 0.
    mutable std::uint64_t nEntry = 0;
};

class CPathNames;
struct XmlRuns;

/// What a node keeps outside the memory of its document. The document has all of it in a ring, so that the nodes need
/// not be visited when they all go.
struct XmlOwned
{
    XmlOwned() noexcept : pNext(this), pPrevious(this) {}
    explicit XmlOwned(XmlOwned & ring) noexcept : pNext(&ring), pPrevious(ring.pPrevious)
    {
        pPrevious->pNext = this;
        ring.pPrevious = this;
    }
    XmlOwned(XmlOwned const &) = delete;
    XmlOwned & operator=(XmlOwned const &) = delete;
    virtual ~XmlOwned()
    {
        pPrevious->pNext = pNext;
        pNext->pPrevious = pPrevious;
    }

    XmlOwned * pNext;
    XmlOwned * pPrevious;
};

struct XmlOwnedText : XmlOwned
{
    XmlOwnedText(XmlOwned & ring, std::u16string text) : XmlOwned(ring), strText(std::move(text)) {}

    std::u16string strText;
};

/// Text of a node. It lies in the memory of the document while it is short; a long one, and one that was asked for as
/// a string object, is a string of its own. The text of an element with children is kept in runs, one for each gap
/// between two children, until somebody asks for it.
class QZXMLLIB_API CXmlText
{
public:
    CXmlText() noexcept : m_pUnits(nullptr), m_nUnits(0), m_nCapacity(0), m_bRuns(0), m_bString(0), m_bMark(0) {}
    CXmlText(CXmlText const &) = delete;
    CXmlText & operator=(CXmlText const &) = delete;
    ~CXmlText()
    {
        if (m_bString)
            delete m_pOwned;
    }

    /// Whether the text lies in the memory of the document in one piece.
    bool IsPlain() const { return !m_bRuns && !m_bString; }
    /// Of a plain text.
    std::u16string_view View() const { return std::u16string_view(m_pUnits, m_nUnits); }
    /// The text as a string object, made at the first call.
    std::u16string & String(XmlOwned & ring);
    std::u16string Copy() const;
    std::size_t Size() const { return m_bString ? m_pOwned->strText.size() : m_nUnits; }
    /// Writes Size() code units at pOut.
    void CopyTo(char16_t * pOut) const;

private:
    friend class CXmlDocument;
    friend class CXmlTree;
    friend class CXmlElement;

    /// Calls take(std::u16string_view) with each piece of the text.
    template <class F>
    void ForEachPiece(F const & take) const;

    union
    {
        char16_t * m_pUnits;
        XmlOwnedText * m_pOwned;
        XmlRuns * m_pRuns;
    };
    /// Of all runs together, where there are some.
    std::uint32_t m_nUnits;
    std::uint32_t m_nCapacity : 29;
    std::uint32_t m_bRuns : 1;
    std::uint32_t m_bString : 1;
    /// At the disposal of the node that owns the text.
    std::uint32_t m_bMark : 1;
};

/// Attribute of an element of a document. Belongs to the document.
class QZXMLLIB_API CXmlAttribute : public CInstanceMonitor
{
public:
    CXmlAttribute(CXmlAttribute const &) = delete;
    CXmlAttribute & operator=(CXmlAttribute const &) = delete;

    std::u16string const & GetLocalName() const { return m_pName->strLocalName; }
    std::u16string const & GetNamespaceURI() const { return m_pName->strNamespaceURI; }
    /// The value, carriage returns included. The first call makes the string object; GetValueView costs nothing.
    std::u16string const & GetValue() const;
    /// The value where it lies. Valid until the document is loaded again or destroyed, or GetValue is called.
    std::u16string_view GetValueView() const
    {
        return m_value.IsPlain() ? m_value.View() : std::u16string_view(GetValue());
    }
    CXmlName const * GetName() const { return m_pName; }
    /// The next attribute of the same element in document order, or null.
    CXmlAttribute * GetNextAttribute() const { return m_pNext; }

    /// Path from the root, as in `/root/item[2]/@id`. The alias of a namespace stands in front of the "@".
    std::u16string GetXPath() const;
    /// True for what directs the parser or the binding and is no data: xmlns, type, schemaLocation and
    /// noNamespaceSchemaLocation of the two namespaces http://www.w3.org/2001/XMLSchema-instance and
    /// http://www.w3.org/2000/xmlns/.
    bool IsNamespaceAttribute() const { return m_pName->bNamespaceAttribute; }
    /// True for nil of the same two namespaces.
    bool IsNilAttribute() const { return m_pName->bNilAttribute; }

private:
    friend class CXmlDocument;
    friend class CXmlElement;
    friend class CXmlTree;

    CXmlAttribute(CXmlName const & name, CXmlElement * pElement);
    /// Counted by the tree, as one of the record.
    CXmlAttribute(CXmlName const & name, CXmlElement * pElement, ClassType * pRecord) noexcept
        : CInstanceMonitor(pRecord), m_pElement(pElement), m_pName(&name)
    {
    }
    ~CXmlAttribute() override;

    CXmlElement * m_pElement;
    CXmlName const * m_pName;
    CXmlAttribute * m_pNext = nullptr;
    mutable CXmlText m_value;
};

/// Element of a document. Belongs to the document. Elements are built by the readers and only read afterwards; a
/// position among children is a plain pointer, null when they are used up.
class QZXMLLIB_API CXmlElement : public CInstanceMonitor
{
public:
    CXmlElement(CXmlElement const &) = delete;
    CXmlElement & operator=(CXmlElement const &) = delete;

    std::u16string const & GetLocalName() const { return m_pName->strLocalName; }
    std::u16string const & GetNamespaceURI() const { return m_pName->strNamespaceURI; }
    /// All character data directly inside the element, joined, without carriage returns. The first call makes the
    /// string object.
    std::u16string const & GetText() const;
    /// The text where it lies; that of an element with children is joined at the first call. Valid until the document
    /// is loaded again or destroyed, or GetText is called.
    std::u16string_view GetTextView() const
    {
        return m_text.IsPlain() ? m_text.View() : std::u16string_view(GetText());
    }
    /// A copy of the text, for those who keep it: nothing is made or joined in the document.
    std::u16string CopyText() const { return m_text.Copy(); }
    /// The same for those who bring the room: GetTextLength() code units.
    void CopyText(char16_t * pOut) const { m_text.CopyTo(pOut); }
    std::size_t GetTextLength() const { return m_text.Size(); }
    CXmlName const * GetName() const { return m_pName; }
    CXmlDocument * GetDocument() const { return m_pName->pDocument; }
    /// Null for the root.
    CXmlElement * GetParentElm() const { return m_pParent; }
    CXmlElement * GetFirstElement() const { return m_pFirstChild; }
    CXmlElement * GetNextSiblingElement() const { return m_pNextSibling; }
    /// The attributes in document order. The first call makes the vector; GetFirstAttribute and
    /// CXmlAttribute::GetNextAttribute walk the same attributes at no cost.
    std::vector<CXmlAttribute *> const & GetAttributes() const;
    CXmlAttribute * GetFirstAttribute() const { return m_text.m_bMark ? m_pAttributes->pFirst : m_pFirstAttribute; }
    /// Value of the first attribute of that name. None gives an empty string, the same object every time.
    std::u16string const & GetAttribute(char16_t const * localName, char16_t const * namespaceURI) const;

    /// Path from the root, as in /root/item[2]. Among namesakes of one parent the position is given, counted from 1.
    std::u16string GetXPath() const;

private:
    friend class CXmlAttribute;
    friend class CXmlDocument;
    friend class CXmlTree;
    friend class CFastInfosetReader;
    friend class CPathNames;

    /// The attributes once somebody asked for a vector of them.
    struct AttributeVector : XmlOwned
    {
        AttributeVector(XmlOwned & ring, CXmlAttribute * p) : XmlOwned(ring), pFirst(p) {}

        CXmlAttribute * pFirst;
        std::vector<CXmlAttribute *> attributes;
    };

    CXmlElement(CXmlName const & name, CXmlElement * pParent);
    /// Counted by the tree, as one of the record.
    CXmlElement(CXmlName const & name, CXmlElement * pParent, ClassType * pRecord) noexcept
        : CInstanceMonitor(pRecord), m_pParent(pParent), m_pName(&name), m_pFirstAttribute(nullptr)
    {
    }
    /// Leaves children and attributes alone: the tree destroys them one by one.
    ~CXmlElement() override;

    void AppendText(char16_t const * pText, std::size_t nUnits);
    /// Takes the last child off the list and hands it to the caller, who gives it to the tree. Null without children.
    /// pBefore is the child before it, or null if there is none.
    CXmlElement * RemoveLastChildElement(CXmlElement * pBefore);
    CXmlTree & GetTree() const;

    CXmlElement * m_pParent;
    CXmlElement * m_pNextSibling = nullptr;
    CXmlElement * m_pFirstChild = nullptr;
    CXmlElement * m_pLastChild = nullptr;
    CXmlName const * m_pName;
    union
    {
        mutable CXmlAttribute * m_pFirstAttribute;
        /// Stands here when the mark of m_text is set.
        mutable AttributeVector * m_pAttributes;
    };
    mutable CXmlText m_text;
};

/// Reads XML text, Fast Infoset and, by way of XML text, JSON, and owns the tree that comes out. Every load starts from
/// nothing, so a document can be loaded again. A failure throws CQzException; what the tree holds then is of no use.
/// A document belongs to one thread.
class QZXMLLIB_API CXmlDocument : public CInstanceMonitor
{
public:
    CXmlDocument();
    /// The caller keeps the context alive as long as the document. The kind of schema is taken from it now, everything
    /// else at each load.
    explicit CXmlDocument(CSerializationContext const & ctx);
    /// pfnElementComplete is called with each element of XML text when its end is read. A true answer takes the element
    /// and all below it out of the tree and frees them, so that a large text can be consumed element by element; the
    /// answer for the root is ignored. What the function throws leaves the load, the CQzException family as a plain
    /// CQzException.
    explicit CXmlDocument(bool (*pfnElementComplete)(CXmlElement *));
    CXmlDocument(CSerializationContext const & ctx, bool (*pfnElementComplete)(CXmlElement *));
    CXmlDocument(CXmlDocument const &) = delete;
    CXmlDocument & operator=(CXmlDocument const &) = delete;
    ~CXmlDocument() override;

    /// Frees the tree and everything else that a load has left.
    virtual void Cleanup();

    /// Reads a file of XML text or Fast Infoset, plain or compressed with gzip or zlib. After AsyncFromXmlFile(true)
    /// the file is read in chunks of 131072 octets and must be plain XML text.
    void Load(char16_t const * pszFileName);
    /// Reads octets of the same forms. They are not needed after the call.
    void LoadXmlStream(unsigned char const * pOctets, unsigned long nOctets);
    /// Reads XML text in the encoding that its declaration names, UTF-8 by default.
    void LoadXml(char const * pszText);
    /// Reads XML text in UTF-16. A declaration must not name another encoding.
    void LoadXml(char16_t const * pszText);

    /// Converts JSON to XML text in UTF-8. The tree stays empty: hand the result to LoadXmlStream. Octets may be
    /// compressed and begin with a byte order mark.
    CBinaryData LoadJsonFile(char16_t const * pszFileName);
    CBinaryData LoadJsonStream(unsigned char const * pOctets, unsigned long nOctets);
    CBinaryData LoadJson(char const * pszText);
    CBinaryData LoadJson(char16_t const * pszText);

    /// The root, or null.
    CXmlElement * GetDocumentElement() const { return m_pDocumentElement; }
    CSerializationContext const & GetContext() const { return *m_pContext; }
    /// The URI that the alias was last bound to anywhere in the document, empty if it never was. The default namespace
    /// has the empty alias.
    std::u16string LookupNamespaceFromAlias(char16_t const * alias) const;
    /// The first alias, in ascending order of code units, bound to the URI; empty if there is none.
    std::u16string LookupAliasFromNamespace(char16_t const * namespaceURI) const;

private:
    friend class CExpatReader;
    friend class CFastInfosetReader;
    friend class CXmlElement;
    friend class CPathNames;

    // What the readers build with.
    CXmlName const & InternName(std::u16string_view namespaceURI, std::u16string_view localName);
    CXmlElement * AddDocElement(CXmlName const & name);
    CXmlElement * AddChildElement(CXmlName const & name);
    void Push(CXmlElement * pElement, CXmlElement * pBefore);
    /// Closes the innermost open element and lets the element-complete function judge it.
    void EndElement();
    static void AddElementAttribute(CXmlElement * pElement, CXmlName const & name, std::u16string_view value);
    /// The value is valid UTF-8.
    static void AddElementAttributeUtf8(
        CXmlElement * pElement, CXmlName const & name, char const * pValue, std::size_t nOctets);
    /// Stops early at a code unit 0 and leaves out carriage returns.
    static void AppendTextExcludingCR(CXmlElement * pElement, char16_t const * pText, std::size_t nUnits);
    static void AppendTextExcludingCR(CXmlElement * pElement, char16_t const * pText);
    /// The text is valid UTF-8 without an octet 0.
    static void AppendUtf8ExcludingCR(CXmlElement * pElement, char const * pText, std::size_t nOctets);
    static void AppendBetweenChildren(CXmlElement * pElement, char const * pText, std::size_t nOctets);

    void ReadWholeFile(char16_t const * pszFileName);
    void AsyncParse(char16_t const * pszFileName);
    void ReadChunkFromFile(unsigned char * pChunk);
    std::uint32_t WaitForChunk(char16_t const * pszFailure, char16_t const * pszFileName);
    void Parse(unsigned char const * pOctets, std::uint32_t nOctets);
    void ParseText(unsigned char const * pOctets, std::size_t nOctets, bool bWide);
    bool ReadFastInfoset(unsigned char const * pOctets, std::uint32_t nOctets);
    void Inflate(unsigned char const *& pOctets, std::uint32_t & nOctets);
    CBinaryData ParseJson(unsigned char const * pOctets, std::uint32_t nOctets);

    /// State of a read in chunks.
    struct AsyncRead;

    std::unique_ptr<AsyncRead> m_pAsyncRead;
    CXmlElement * m_pDocumentElement = nullptr;
    std::vector<CXmlElement *> m_pElementStack;
    std::map<std::u16string, std::u16string> m_mapNamespaces;
    std::unique_ptr<unsigned char[]> m_pData;
    std::uint32_t m_nDataLength = 0;
    SchemaType m_eSchemaType;
    bool (*m_pfnElementComplete)(CXmlElement *);
    CSerializationContext const * m_pContext;
    std::unique_ptr<CXmlTree> m_pTree;
    /// For each level of the stack, the sibling in front of the element that is open there.
    std::vector<CXmlElement *> m_pPreviousSiblings;
};

} // namespace QzXmlLib16
