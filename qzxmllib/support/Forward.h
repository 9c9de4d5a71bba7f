#pragma once

/// Names all public classes, for headers that only point to them.

class CBase64;
class CInstanceMonitor;
class CQZCriticalSection;

namespace QzXmlLib16
{

class CAttribute;
class CAttributeCol;
class Cbase64BinaryCol;
class CBigInteger;
class CBinaryData;
class CBinaryStream;
class CbooleanCol;
class CClassfactoryBase;
class CdateCol;
class CDateTime;
class CdatetimeBaseCol;
class CdatetimeCol;
class CDateTimeSpan;
class CdayCol;
class CDecimal;
class CdecimalCol;
class CdurationCol;
class CElement;
class CElementCol;
class CExpatReader;
class CFastInfosetContext;
class CFastInfosetReader;
class CFastInfosetWriter;
class CFileBinaryStream;
class CFileTextStream;
class CFIVocabulary;
class ChexBinaryCol;
class Ci1Col;
class Ci2Col;
class Ci4Col;
class Ci8Col;
class CintegerCol;
class CJsonContext;
class CJsonTextWriter;
class CmonthCol;
class CmonthDayCol;
class CNamespaceAliasMap;
class CPrimitiveRestrictions;
class CQzException;
class Cr4Col;
class Cr8Col;
class CSerializationContext;
class CStringBuffer;
class CstringCol;
class CTextStream;
class CtimeCol;
class Cui1Col;
class Cui2Col;
class Cui4Col;
class Cui8Col;
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
class CyearCol;
class CyearMonthCol;
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
