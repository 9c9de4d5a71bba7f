#pragma once

/// Names all public classes, for headers that only point to them.

class CBase64;
class CInstanceMonitor;
class CQZCriticalSection;

namespace QzXmlLib16
{

class CAttribute;
class CAttributeCol;
class CBigInteger;
class CBinaryData;
class CBinaryStream;
class CClassfactoryBase;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class CElement;
class CElementCol;
class CExpatReader;
class CFastInfosetContext;
class CFastInfosetReader;
class CFastInfosetWriter;
class CFileBinaryStream;
class CFileTextStream;
class CFIVocabulary;
class CJsonContext;
class CJsonTextWriter;
class CNamespaceAliasMap;
class CPrimitiveRestrictions;
class CQzException;
class CSerializationContext;
class CStringBuffer;
class CTextStream;
class CXmlAttribute;
class CXmlCollection;
class CXmlCollectionBase;
class CXmlDocument;
class CXmlElement;
class CXmlGeneratedClass;
class CXmlObjectBase;
class CXmlTextWriter;
class CXmlTypeCollection;
class CXmlWriter;
class IEventSink;
class INillable;
class QzVariant;
template <class T>
class CSmartPtr;

} // namespace QzXmlLib16

namespace QzXmlLib16Data
{

class CAttributeInfo;
class CElementInfo;
class CParentElementInfo;

} // namespace QzXmlLib16Data
