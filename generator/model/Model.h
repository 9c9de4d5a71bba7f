#pragma once

#include "generator/schema/Diagnostics.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What the generated classes will be, free of the parser and of C++ spelling details. All texts are UTF-8.
namespace QzXmlGen
{

/// A name of the schema: local part and namespace name, which is empty for none.
struct SchemaName
{
    std::string strNamespaceUri;
    std::string strLocal;
};

bool operator<(SchemaName const & left, SchemaName const & right);
bool operator==(SchemaName const & left, SchemaName const & right);

/// Where a generated C++ entity lives, and how it is called.
struct CppName
{
    std::string strNamespace;
    std::string strName;
    /// The output file without extension that declares it.
    std::size_t nFile = 0;
};

struct EnumValue
{
    std::string strText;
    std::string strDocumentation;
    std::string strCppName;
};

/// The facets of a simple type, gathered from all its steps of restriction. Numbers are kept as they are spelled.
struct FacetSet
{
    std::optional<std::string> minInclusive, minExclusive, maxInclusive, maxExclusive;
    std::optional<std::string> length, minLength, maxLength, totalDigits, fractionDigits;
    /// One list for each step: one pattern of every list has to match.
    std::vector<std::vector<std::string>> patterns;

    bool IsEmpty() const;
};

enum class Variety
{
    Atomic,
    List,
    Union
};

/// A simple type: the kind its values have, what restricts them, and how a member holds them.
struct SimpleType
{
    /// Empty for an anonymous type.
    SchemaName name;
    CppName cpp;
    Position position;
    std::string strDocumentation;

    Variety eVariety = Variety::Atomic;
    /// The enumerator of ItemType without its prefix: the kind of an atomic value.
    std::string strKind;
    /// The enumerator of CWhitespaceUtils::WhitespaceRule without its prefix.
    std::string strWhitespace;
    FacetSet facets;
    std::vector<EnumValue> enumeration;
    SimpleType const * pItem = nullptr;
    std::vector<SimpleType const *> members;

    /// True if a member is of a generated enum class.
    bool bEnumClass = false;
    /// True if a member holds text, though the kind of the values is another: the spelling is kept.
    bool bText = false;
    /// True if the type says more than its kind and white space: a description of it is generated.
    bool bDescribed = false;
};

struct ClassType;

/// One element name under which an entry takes a child of a class.
struct Alternative
{
    SchemaName element;
    ClassType const * pClass = nullptr;
};

enum class MemberKind
{
    Attribute,
    /// The text of an element with simple content.
    Text,
    /// An element of simple type.
    Value,
    /// An element of complex type.
    Child,
    /// An element without a class of its own: any content, kept as a tree.
    Untyped,
    /// A nested group, which has no element of its own.
    Group,
    /// Elements of a substitution group whose classes have the class of the head as base.
    Substitution,
    AnyElement,
    AnyAttribute
};

constexpr int kUnbounded = -1;

struct Member
{
    MemberKind eKind = MemberKind::Value;
    SchemaName name;
    std::string strCppName;
    std::string strDocumentation;
    Position position;

    SimpleType const * pType = nullptr;
    /// The class of a child or group; the class of the head of a substitution group.
    ClassType * pClass = nullptr;
    /// For children: the classes that xsi:type may choose; for substitution groups: its elements.
    std::vector<Alternative> alternatives;

    int nMin = 1;
    /// kUnbounded for no limit.
    int nMax = 1;
    bool bNillable = false;
    std::optional<std::string> defaultValue;
    std::optional<std::string> fixedValue;
    /// The namespace list of a wildcard as XML Schema writes it.
    std::string strNamespaces;
    /// For a wildcard: "lax", "strict" or "skip".
    std::string strProcess;

    /// In a class derived by restriction: the member of a base class that holds the value.
    Member const * pInherited = nullptr;
    ClassType const * pInheritedFrom = nullptr;

    bool IsRepeated() const { return nMax == kUnbounded || nMax > 1; }
};

enum class GroupKind
{
    Sequence,
    Choice,
    All
};

struct ClassType
{
    /// Empty for an anonymous type and for a group.
    SchemaName name;
    CppName cpp;
    Position position;
    std::string strDocumentation;

    GroupKind eGroup = GroupKind::Sequence;
    /// A nested group: its members lie in the element of its owner.
    bool bPseudo = false;
    /// A nested group all of whose members may be absent.
    bool bMayBeEmpty = false;
    bool bAbstract = false;
    /// Some element of this type may be nil.
    bool bNillable = false;
    /// Another class has this one as base.
    bool bIsBase = false;
    ClassType * pBase = nullptr;
    bool bRestriction = false;
    /// The members that the class adds; all members for a restriction.
    std::vector<Member> members;
    /// The groups nested in this class, in order of appearance.
    std::vector<ClassType *> groups;
    ClassType const * pOwner = nullptr;
    /// For names of anonymous types: the element that declares it.
    std::string strElementName;
};

/// A global element: what a document may have as its root.
struct RootElement
{
    SchemaName name;
    std::string strCppName;
    std::string strCppNamespace;
    std::size_t nFile = 0;
    std::string strDocumentation;
    Position position;
    /// Null for an element that is kept as a tree.
    ClassType * pClass = nullptr;
    /// The type of an element of simple type, which has neither class nor children.
    SimpleType const * pType = nullptr;
    bool bAbstract = false;
    std::vector<Alternative> alternatives;
};

/// Something in the schemas that the classes do not enforce or keep.
struct Loss
{
    Position position;
    std::string strComponent;
    std::string strText;
};

bool operator<(Loss const & left, Loss const & right);

/// One pair of header and source.
struct OutputFile
{
    std::string strStem;
    /// The schema documents it is made of, by name without folder.
    std::vector<std::string> schemas;
};

struct Model
{
    std::vector<std::unique_ptr<SimpleType>> simpleTypes;
    std::vector<std::unique_ptr<ClassType>> classes;
    std::vector<RootElement> roots;
    std::vector<Loss> losses;
    std::vector<OutputFile> files;
};

} // namespace QzXmlGen
