#pragma once

#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/MemoryLeakHelp.h"
#include "qzxmllib/values/ItemType.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace QzXmlLib16
{

class CNamespaceIndex;
struct CWriteScratch;

/// The one output of the binding engine. Holds what all output forms share: the default namespace, the map of
/// namespaces, the stack of open elements and the scope of declarations. One writer serves one thread. Names are local
/// names with the URI of their namespace, empty for none; the writer finds the prefixes.
class QZXMLLIB_API CXmlWriter : public CInstanceMonitor
{
public:
    /// Namespace URI to alias, ordered by code units.
    using CNamespaceMap = std::map<std::u16string, std::u16string>;

    /// How a name in a namespace is prefixed. The alias belongs to the map of the element.
    struct CPrefix
    {
        std::u16string const * pAlias; ///< never null
        bool bGenerated;               ///< true if the alias was made up now, so its declaration must be written
    };

    /// One open element. An element without declarations of its own reads those of its nearest ancestor that has some.
    /// A writer of the application's own makes records with PushContext and ends them with PopContext, or makes its own
    /// with the constructors and, before it deletes one, takes the parent by DetachParent.
    class QZXMLLIB_API CXmlWriterContext : public CInstanceMonitor
    {
    public:
        /// A nested element. The record owns its parent.
        CXmlWriterContext(
            std::u16string const & strName, std::u16string const & strNamespace, CXmlWriterContext * pParent);
        /// A root element, with a copy of the map.
        CXmlWriterContext(std::u16string const & strName, std::u16string const & strNamespace,
            std::u16string const & strDefaultNamespace, CNamespaceMap const & namespaces,
            CXmlWriterContext * pParent = nullptr);
        CXmlWriterContext(CXmlWriterContext const &) = delete;
        CXmlWriterContext & operator=(CXmlWriterContext const &) = delete;
        /// Destroys the parent as well, unless it was detached.
        ~CXmlWriterContext() override;

        /// The enclosing element, or null for the root.
        CXmlWriterContext * GetParent() const noexcept { return m_pParent; }
        /// Gives the parent, which this record owns no longer.
        CXmlWriterContext * DetachParent() noexcept;

        /// Those that hold here, whichever element declared them.
        std::u16string const & GetDefaultNamespace() const noexcept { return m_pScope->m_spScope->strDefaultNamespace; }
        CNamespaceMap const & GetNamespaces() const;
        /// A number that no other declarations have had. It changes with them and is never 0.
        std::uint64_t GetDeclarationsVersion() const noexcept { return m_pScope->m_spScope->nVersion; }
        /// Holds for this element and its descendants.
        void SetDefaultNamespace(std::u16string const & strUri);
        /// As SetDefaultNamespace. An alias that the namespace had is replaced.
        void AddNamespace(std::u16string const & strUri, std::u16string const & strAlias);
        /// The alias of a namespace. An unknown one is entered into the map with an empty alias.
        std::u16string const & GetNamespaceMapValue(std::u16string const & strNamespace);

        std::uint32_t m_nChildCount = 0;    ///< child elements started in this one
        bool m_bStartTagOpen = true;        ///< whether the start tag can still take attributes
        std::int32_t m_nDepth = 0;          ///< 0 for the root
        std::u16string & m_strNamespace;    ///< URI of the element's namespace
        std::u16string & m_strName;         ///< local name
        bool m_bContentFlag = false;        ///< free for the concrete writer
        std::int32_t m_eArrayState = 0;     ///< see CXmlWriter::SetArrayState
        std::u16string & m_strWrittenAlias; ///< prefix of the start tag, for the end tag; may be empty

    private:
        friend class CXmlWriter;

        /// What the references above point to. Kept by the writer from record to record, with its capacity.
        struct CTexts
        {
            std::u16string strNamespace;
            std::u16string strName;
            std::u16string strWrittenAlias;
        };
        /// Declarations of the record's own, in front of those of an outer scope.
        struct CScope
        {
            CScope(std::u16string const & strDefault, CNamespaceMap const & map);
            /// Begins without declarations of its own.
            CScope(std::u16string const & strDefault, CScope const & outer);
            /// To be called after every change.
            void Renew() noexcept;
            std::u16string const * Find(std::u16string const & strUri) const;
            /// The declarations in force, which belong to the scope.
            CNamespaceMap const & GetWhole() const;

            CScope const * pOuter = nullptr; ///< of an enclosing element, or null
            std::u16string strDefaultNamespace;
            CNamespaceMap own;
            /// The same with those of the outer scopes, made when it is asked for.
            mutable std::unique_ptr<CNamespaceMap> spWhole;
            std::uint64_t nVersion; ///< differs from that of any other declarations, and from 0
            std::uint64_t nState;   ///< differs after each change, and from that of any other scope
        };

        CXmlWriterContext(CTexts & texts, CXmlWriterContext * pParent);
        CXmlWriterContext(CTexts & texts, std::unique_ptr<CScope> spScope);
        CXmlWriterContext(std::unique_ptr<CTexts> spTexts, CXmlWriterContext * pParent);
        CXmlWriterContext(std::unique_ptr<CTexts> spTexts, std::unique_ptr<CScope> spScope);

        bool Inherits() const noexcept { return m_pScope != this; }
        void OwnScope(bool bCopyDefaultNamespace);
        void SetOwn(std::u16string const & strUri, std::u16string const & strAlias);
        void CutInnerScopes();
        static void Destroy(CXmlWriterContext * pRecord) noexcept;

        CXmlWriterContext * m_pParent;
        CXmlWriterContext * m_pChild = nullptr;
        /// This record, or the nearest ancestor that has declarations of its own.
        CXmlWriterContext * m_pScope;
        std::unique_ptr<CScope> m_spScope;
        std::unique_ptr<CTexts> m_spTexts; ///< null while the texts belong to the writer
        /// Lies in storage of the writer, which is not to be freed by delete.
        bool m_bPooled = false;
    };

    CXmlWriter(CXmlWriter const &) = delete;
    CXmlWriter & operator=(CXmlWriter const &) = delete;
    /// Elements may still be open.
    ~CXmlWriter() override;

    /// Comes first. Does nothing here; a writer that has a stream opens it.
    virtual void StartDocument();
    /// Throws CQzException if an element is open.
    virtual void EndDocument();
    /// For the open element and its descendants, or with none open for the documents to come. Writes nothing.
    virtual void SetDefaultNamespace(std::u16string const & strUri);
    /// As SetDefaultNamespace, for an alias, which must not be empty.
    virtual void AddNamespace(std::u16string const & strAlias, std::u16string const & strUri);
    /// The text comes without delimiters.
    virtual void WriteComment(std::u16string const & strText) = 0;
    /// The text brings its own "<?" and "?>".
    virtual void WriteProcessingInstruction(std::u16string const & strText) = 0;
    /// Text in the form of attributes, for the start tag of the root.
    virtual void WriteInLineSchema(std::u16string const & strText) = 0;
    // What writes into an element throws CQzException if none is open. Text and values come without escapes; eType
    // tells the kind of value that they were printed from.
    /// Opens an element, within the open one if there is one.
    virtual void WriteStartElement(std::u16string const & strName, std::u16string const & strUri) = 0;
    /// Content of the open element.
    virtual void WriteText(std::u16string const & strText, ItemType eType) = 0;
    /// Closes the innermost element.
    virtual void WriteEndElement() = 0;
    /// Only in front of the content of the element.
    virtual void WriteAttribute(std::u16string const & strName, std::u16string const & strUri,
        std::u16string const & strValue, ItemType eType) = 0;
    /// The attribute type of XML Schema, with the name of a type. As WriteAttribute.
    virtual void WriteXsiType(
        std::u16string const & strTypeUri, std::u16string const & strTypeName, ItemType eType) = 0;
    /// The attribute nil of XML Schema, with the value true. As WriteAttribute.
    virtual void WriteXsiNil() = 0;
    /// As WriteText and WriteAttribute, for text that is not in a string of its own. By default they make one.
    virtual void WriteTextView(std::u16string_view text, ItemType eType);
    virtual void WriteAttributeView(
        std::u16string const & strName, std::u16string const & strUri, std::u16string_view value, ItemType eType);

    /// A whole element that holds nothing but the text: WriteStartElement, WriteTextView and WriteEndElement, which the
    /// default calls. The text may be empty.
    virtual void WriteElementView(
        std::u16string const & strName, std::u16string const & strUri, std::u16string_view text, ItemType eType);

    /// An alias that is no value of the map: "AA" to "ZZ", then three letters, and so on. It is not stored.
    static std::u16string GenerateNamespaceAlias(CNamespaceMap const & namespaces);
    /// Stores in the open element how far the array of its collection is: 0 none, 1 about to be written, 2 opened,
    /// 3 finished. The writer closes a finished array later, so 1 over 3 becomes 4, and 3 over 1, where no array was
    /// opened, becomes 0. Does nothing with no element open.
    void SetArrayState(std::int32_t eState) noexcept;
    /// SetArrayState with 1 and 3 around the items of a collection, wherever it stands: inside an item that has no
    /// element of its own the array of the outer collection is kept.
    void BeginCollection() noexcept;
    void EndCollection() noexcept;

    /// The innermost open element, or null.
    CXmlWriterContext const * GetContext() const noexcept { return m_pContext; }
    /// The number of open elements.
    std::size_t GetOpenElements() const noexcept { return m_nSlotsUsed; }
    /// Those of the document, set with no element open. The map holds the XML namespace from the start.
    std::u16string const & GetDefaultNamespace() const noexcept { return m_strDefaultNamespace; }
    CNamespaceMap const & GetNamespaces() const noexcept { return m_mapNamespaces; }

protected:
    explicit CXmlWriter(char16_t const * pszInstanceName);

    /// Makes a new record the innermost one: the root with copies of the document's declarations, or a nested one.
    CXmlWriterContext & PushContext(std::u16string const & strName, std::u16string const & strUri);
    /// Destroys the innermost record; its parent becomes the innermost.
    void PopContext() noexcept;
    /// The innermost record. Throws CQzException if no element is open.
    CXmlWriterContext & RequireContext() const
    {
        if (m_pContext == nullptr)
            ThrowNoElement();
        return *m_pContext;
    }
    /// As RequireContext; also throws if the start tag can take no more attributes.
    CXmlWriterContext & RequireStartTag() const
    {
        CXmlWriterContext & context = RequireContext();
        if (!context.m_bStartTagOpen)
            ThrowStartTagClosed();
        return context;
    }
    /// Whether an element or a type in the namespace is written without a prefix.
    static bool NeedsNoPrefix(CXmlWriterContext const & context, std::u16string const & strUri) noexcept;
    /// The alias of a namespace. If there is none, one is made up and added to the element.
    CPrefix FindPrefix(CXmlWriterContext & context, std::u16string const & strUri);
    /// The alias of a namespace, or null if there is none.
    std::u16string const * FindKnownPrefix(CXmlWriterContext const & context, std::u16string const & strUri);
    /// Takes the version of other declarations that are the same.
    static void SetDeclarationsVersion(CXmlWriterContext & context, std::uint64_t nVersion) noexcept
    {
        context.m_pScope->m_spScope->nVersion = nVersion;
    }
    /// The number of the metadata entry that has lent this very string for the call, or 0.
    std::uint64_t EntryOf(std::u16string const & strName) const noexcept
    {
        return &strName == m_pEntryName ? m_nEntry : 0;
    }
    /// Counts a record that comes and goes, for an element that is written without one.
    static void CountPassingContext();

    std::u16string m_strDefaultNamespace;
    CXmlWriterContext * m_pContext = nullptr;
    CNamespaceMap m_mapNamespaces;

private:
    friend class CNamespaceLoan;
    friend class CWriteLease;

    struct Slot;
    /// The declaration found last in a map.
    struct LastAlias
    {
        CNamespaceMap::value_type const * pEntry = nullptr;
        std::uint64_t nState = 0; ///< of the scope; 0 for none
    };

    /// The index brought up to the declarations of the innermost record, or null for any other record.
    CNamespaceIndex * IndexOf(CXmlWriterContext const & context);
    void LeaveScope(CXmlWriterContext const & record) noexcept;
    [[noreturn]] static void ThrowNoElement();
    [[noreturn]] static void ThrowStartTagClosed();

    /// Storage of records by nesting level, used again and again.
    std::vector<std::unique_ptr<Slot>> m_slots;
    std::size_t m_nSlotsUsed = 0;
    LastAlias m_lastAlias;
    /// Made by the first look-up.
    std::unique_ptr<CNamespaceIndex> m_spIndex;
    std::uint64_t m_nIndexed = 0; ///< the state of the scope that the index stands for; 0 if it is of no use
    std::unique_ptr<CWriteScratch> m_spScratch; ///< null before the first value
    std::u16string const * m_pEntryName = nullptr;
    std::u16string const * m_pNamespace = nullptr; ///< see CNamespaceLoan
    std::uint64_t m_nEntry = 0;
};

} // namespace QzXmlLib16
