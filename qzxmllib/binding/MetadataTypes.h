#pragma once

#include "qzxmllib/binding/ParentElementInfo.h"
#include "qzxmllib/support/SmartPtr.h"

namespace QzXmlLib16
{

class CPrimitiveRestrictions;
class CSerializationContext;
class CXmlAttribute;
class CXmlCollectionBase;
class CXmlElement;
class CXmlGeneratedClass;
class CXmlObjectBase;
class CXmlWriter;
class QzVariant;

} // namespace QzXmlLib16

/// What the metadata classes take from the public namespace.
namespace QzXmlLib16Data
{

using QzXmlLib16::CPrimitiveRestrictions;
using QzXmlLib16::CSerializationContext;
using QzXmlLib16::CSmartPtr;
using QzXmlLib16::CXmlAttribute;
using QzXmlLib16::CXmlCollectionBase;
using QzXmlLib16::CXmlElement;
using QzXmlLib16::CXmlGeneratedClass;
using QzXmlLib16::CXmlObjectBase;
using QzXmlLib16::CXmlWriter;
using QzXmlLib16::ItemType;
using QzXmlLib16::QzVariant;

/// Number of an enumeration to its schema text. The text belongs to the function; null means an unknown number.
using EnumToStringFunction = char16_t const * (*)(int);
/// Schema text of an enumeration to its number. Throws from the CQzException family for an unknown text.
using EnumFromStringFunction = int (*)(char16_t const *);
/// Creates an object by the number of its class, to be written under the element name.
using CreateObjectFunction = CSmartPtr<CXmlObjectBase> (*)(int classId, char16_t const * elementName);
/// Creates the object that fits an element, or gives null when no class does.
using CreateFromElementFunction = CSmartPtr<CXmlObjectBase> (*)(CXmlElement *);

} // namespace QzXmlLib16Data
