#pragma once

#include "qzxmllib/binding/EventSink.h"
#include "qzxmllib/binding/Nillable.h"
#include "qzxmllib/binding/SerializationContext.h"
#include "qzxmllib/support/Enumerations.h"
#include "qzxmllib/support/Export.h"
#include "qzxmllib/support/SmartPtr.h"
#include "qzxmllib/values/BinaryData.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace QzXmlLib16Data
{

class CAttributeInfo;
class CElementInfo;

} // namespace QzXmlLib16Data

namespace QzXmlLib16
{

class CElement;
class CXmlCollectionBase;
class CXmlDocument;
class CXmlElement;
class CXmlWriter;

/// True makes ToXmlFile and ToJsonFile write the file while the object is walked, without compression only. A
/// process-wide switch, false at first; set it before concurrent work starts.
QZXMLLIB_API void AsyncToXmlFile(bool bAsync);

/// Root of everything that can be turned into XML, Fast Infoset or JSON and back. Objects are counted and live on the
/// heap under CSmartPtr. One object belongs to one thread at a time; only the count is atomic.
///
/// The To... operations write this object as the root of a document. The From... operations fill it from a document;
/// they do not compare the root's name. Text between the children of an object is ignored. A failed read leaves what
/// was read so far, and the object can be read into again. All failures are of the CQzException family.
class QZXMLLIB_API CXmlObjectBase : public IEventSink
{
public:
    /// A copy takes the name and starts with a count of 0.
    CXmlObjectBase(CXmlObjectBase const & other);
    /// Takes the name and leaves the count of this object alone.
    CXmlObjectBase & operator=(CXmlObjectBase const & other);

    /// Counts one more holder and gives the new count.
    long AddRef();
    /// Gives the new count. At 0 the object is destroyed.
    long Release();

protected:
    void OnEvent(CXmlObjectBase * pMsgSource, IEventSink::MsgType msgType, void * pData) override;

public:
    /// This object, as the root of its family.
    virtual CXmlObjectBase * GetBase() = 0;
    CXmlObjectBase const * GetBase() const;

    /// Writes a file. An existing one is replaced when the new one is complete, so that a failure leaves it as it was;
    /// with AsyncToXmlFile it is overwritten as the object is walked, and a failure leaves a part. CompressionType_ZLib
    /// is refused before the file is created, and so are gzip data that would be longer than the plain octets. Files of
    /// encoding UTF-16 begin with a byte order mark, also in front of compressed data.
    virtual void ToXmlFile(char16_t const * fileName, bool includeHeader = true, bool formatted = true,
        XmlEncoding eEncoding = XmlEncoding_UTF8, EOLType eEOL = EOLType_LF,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext(),
        CompressionType eCompression = CompressionType_None) const;
    /// Writes a Fast Infoset document (ITU-T X.891), with the XML declaration asked for in front of it.
    virtual void ToFastInfosetFile(char16_t const * fileName, FInfoDecl eDecl = FInfoDecl_None,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext(),
        CompressionType eCompression = CompressionType_None) const;
    /// Writes JSON by the convention that the JSON options of the context choose. It is that of RFC 8259 with the
    /// strict option; without it line feeds stand as they are in strings, which other readers refuse. What is not UTF-8
    /// cannot be read back.
    virtual void ToJsonFile(char16_t const * fileName, bool formatted = true, XmlEncoding eEncoding = XmlEncoding_UTF8,
        EOLType eEOL = EOLType_LF, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext(),
        CompressionType eCompression = CompressionType_None) const;
    /// The document as wide text. The declaration names no encoding.
    virtual std::u16string ToXml(bool includeHeader = true, bool formatted = true, EOLType eEOL = EOLType_LF,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext()) const;
    /// The object as JSON text.
    virtual std::u16string ToJson(bool formatted = true, EOLType eEOL = EOLType_LF,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext()) const;
    /// The document as octets without a byte order mark. Compressed output that would be longer than the plain octets
    /// throws.
    virtual CBinaryData ToXmlStream(bool includeHeader = true, bool formatted = true,
        XmlEncoding eEncoding = XmlEncoding_UTF8, EOLType eEOL = EOLType_LF,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext(),
        CompressionType eCompression = CompressionType_None) const;
    /// The octets that ToFastInfosetFile writes.
    virtual CBinaryData ToFastInfosetStream(FInfoDecl eDecl = FInfoDecl_None,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext(),
        CompressionType eCompression = CompressionType_None) const;
    /// The octets of ToJson, without a byte order mark.
    virtual CBinaryData ToJsonStream(bool formatted = true, XmlEncoding eEncoding = XmlEncoding_UTF8,
        EOLType eEOL = EOLType_LF, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext(),
        CompressionType eCompression = CompressionType_None) const;

    /// Reads a file of XML text or Fast Infoset, plain, gzip or zlib.
    virtual void FromXmlFile(
        char16_t const * fileName, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Reads a file of JSON in UTF-8, plain, gzip or zlib.
    virtual void FromJsonFile(
        char16_t const * fileName, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    // CElement hides these on purpose; g++ tells it here.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#endif
    /// Reads wide XML text. A declaration that names another encoding than UTF-16 is refused, and so is a byte order
    /// mark.
    virtual void FromXml(
        char16_t const * text, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Reads XML text in the encoding that its declaration names, UTF-8 without one.
    virtual void FromXml(
        char const * text, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
    /// Reads JSON text. When JSON is well-formed but does not fit the class, the message holds the XML that was made of
    /// it, and the path stands in the inner failure.
    virtual void FromJson(
        char16_t const * text, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Reads JSON text in UTF-8.
    virtual void FromJson(
        char const * text, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Reads octets of XML text or Fast Infoset, plain, gzip or zlib.
    virtual void FromXmlStream(
        CBinaryData const & data, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    virtual void FromXmlStream(unsigned char * const pData, unsigned long length,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Reads octets of JSON in UTF-8, plain, gzip or zlib.
    virtual void FromJsonStream(
        CBinaryData const & data, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    virtual void FromJsonStream(unsigned char * const pData, unsigned long length,
        CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Fills this object from an element of open content.
    virtual void FromXmlElement(
        CElement const * pElement, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());
    /// Fills this object from an element of a document.
    virtual void FromXmlElement(
        CXmlElement const * pElement, CSerializationContext const & ctx = CSerializationContext::GetDefaultContext());

protected:
    /// Objects are destroyed by Release.
    virtual ~CXmlObjectBase();

    /// Namespace of the root element when this object is written by an entry operation.
    virtual std::u16string GetTargetNamespace() = 0;

public:
    /// Namespace that the element metadata receives as the parent's on reading.
    virtual std::u16string GetNamespace() = 0;

protected:
    virtual void AttributesToXml_Int(CXmlWriter * pWriter, CSerializationContext const & ctx) const;
    virtual void ToXml_Int(CXmlWriter * pWriter, bool isRoot, char16_t const * namespaceUri,
        CSerializationContext const & ctx, bool emptyChoiceAllowed) const = 0;
    /// Reads from pElement, starting at its child pChild, and gives the child at which the reading stopped.
    virtual CXmlElement * FromXml_Int(
        CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx, bool emptyChoiceAllowed) = 0;

    CXmlObjectBase();

    /// The local name under which the object is written.
    std::u16string GetElementName() const
    {
        return m_strElementName;
    }
    void SetElementName(char16_t const * name);

    // The virtual operations of another object of the family.
    static void AttributesToXml_Int(
        CXmlObjectBase const * pObject, CXmlWriter * pWriter, CSerializationContext const & ctx);
    static void ToXml_Int(CXmlObjectBase const * pObject, CXmlWriter * pWriter, bool isRoot,
        char16_t const * namespaceUri, CSerializationContext const & ctx, bool emptyChoiceAllowed);
    static CXmlElement * FromXml_Int(
        CXmlObjectBase * pObject, CXmlElement * pElement, CXmlElement * pChild, CSerializationContext const & ctx);
    static void SetElementName(CXmlObjectBase * pObject, char16_t const * name);

    static void FireOnCollectionChangeEvent(IEventSink * pSink, CXmlCollectionBase * pSource);
    static void FireOnCollectionAddEvent(IEventSink * pSink, CXmlCollectionBase * pSource, void * pData);
    static void FireOnCollectionAddCompleteEvent(IEventSink * pSink, CXmlCollectionBase * pSource, void * pData);
    /// An index of -1 hands null to the listener.
    static void FireOnCollectionRemoveEvent(IEventSink * pSink, CXmlCollectionBase * pSource, int nIndex);
    static void FireOnCollectionRemoveCompleteEvent(IEventSink * pSink, CXmlCollectionBase * pSource, int nIndex);

    // Helpers for the property code of generated classes. `current` names the element of a choice that is in use and is
    // empty when none is.

    /// Selects name, or with valid false selects nothing. Throws CQzInvalidStateException when another is selected.
    void Choice_SetElementValid(bool valid, char16_t const * name, std::u16string & current);
    /// Selects name for a value; a null value withdraws name. Nothing being selected, a null value selects name as
    /// well. Throws CQzInvalidStateException when another is selected and the value is not null.
    void Choice_SelectElement(char16_t const * name, CXmlObjectBase * pValue, std::u16string & current);
    /// Selects name when its collection has items and withdraws it when it has none.
    void Choice_CollectionChanged(char16_t const * name, long count, std::u16string & current);
    /// With count 0 lets the collection read from pCurrent; if it took anything, stores the new position, validates the
    /// number of items and counts up.
    void Choice_Read_Collection(CXmlCollectionBase * pCol, CXmlElement * pElement, CXmlElement *& pCurrent,
        long & count, CSerializationContext const & ctx);
    /// Throws CQzInvalidParamException for a null value.
    void Throw_IfPropertyIsNull(CXmlObjectBase * pValue, char16_t const * name);
    /// Throws CQzInvalidParamException when a value that is not null has another element name.
    void Throw_IfElementNameDiffers(CXmlObjectBase * pValue, char16_t const * name);
    /// Throws CQzInvalidNamespaceException when the namespace does not match the list of a wildcard.
    void TestNamespace(char16_t const * ns, char16_t const * list, char16_t const * target) const;
    bool IsNamespaceValid(char16_t const * ns, char16_t const * list, char16_t const * target) const;
    /// Compares the local name and, unless the context ignores namespaces, the namespace URI.
    bool DoesElementNameMatch(CSerializationContext const & ctx, CXmlElement const * pElement, char16_t const * name,
        char16_t const * ns) const;

    std::u16string m_strElementName;

private:
    friend class QzXmlLib16Data::CAttributeInfo;
    friend class QzXmlLib16Data::CElementInfo;

    /// Writes this object as the root of what pWriter produces.
    void WriteTo(CXmlWriter & writer, CSerializationContext const & ctx) const;
    /// Fills this object from the root of a loaded document.
    void ReadFrom(CXmlDocument & document, CSerializationContext const & ctx);
    void ReadFromRoot(CXmlElement * pRoot, CSerializationContext const & ctx);
    /// Fills this object from the XML text that was made of JSON. Without full round trip the names alone decide.
    void FromJson_Int(CBinaryData const & xml, CSerializationContext const & ctx);
    /// The operations that write are constant although the questions they ask of the object are not.
    CXmlObjectBase * Mutable() const
    {
        return const_cast<CXmlObjectBase *>(this);
    }

    /// Destroys an object that nobody holds any more. A deep tree does not overflow the stack: what it holds too far
    /// down waits until the outermost destruction of the thread gets there.
    static void Destroy(CXmlObjectBase * pObject) noexcept;

    std::atomic<std::int32_t> m_nRefCount{0};
};

} // namespace QzXmlLib16
