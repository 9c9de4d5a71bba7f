#include "generator/cli/Report.h"

#include <algorithm>
#include <ostream>

namespace QzXmlGen
{

namespace
{

std::string NameOf(CppName const & name)
{
    return name.strNamespace + "::" + name.strName;
}

char const * ToText(GroupKind eGroup)
{
    switch (eGroup)
    {
    case GroupKind::Choice:
        return "choice";
    case GroupKind::All:
        return "all";
    default:
        return "sequence";
    }
}

std::string KindOf(Member const & member)
{
    switch (member.eKind)
    {
    case MemberKind::Attribute:
        return "attribute";
    case MemberKind::Text:
        return "text";
    case MemberKind::Value:
        return "element";
    case MemberKind::Child:
        return "child";
    case MemberKind::Untyped:
        return "tree";
    case MemberKind::Group:
        return "group";
    case MemberKind::Substitution:
        return "substitutes";
    case MemberKind::AnyElement:
        return "any element";
    case MemberKind::AnyAttribute:
        return "any attribute";
    }
    return {};
}

std::string TypeOf(Member const & member)
{
    if (member.pClass != nullptr)
        return NameOf(member.pClass->cpp);
    if (member.pType == nullptr)
        return member.strNamespaces;
    return member.pType->bEnumClass ? NameOf(member.pType->cpp) : member.pType->bText ? "text" : member.pType->strKind;
}

std::string LimitsOf(Member const & member)
{
    if (member.eKind == MemberKind::Text || member.eKind == MemberKind::AnyAttribute)
        return {};
    return " " + std::to_string(member.nMin) + ".." +
           (member.nMax == kUnbounded ? "unbounded" : std::to_string(member.nMax));
}

void PrintClass(std::ostream & out, ClassType const & type)
{
    out << "class " << NameOf(type.cpp) << ": " << ToText(type.eGroup);
    if (type.pBase != nullptr)
        out << (type.bRestriction ? ", restricts " : ", extends ") << NameOf(type.pBase->cpp);
    if (type.bAbstract)
        out << ", abstract";
    if (type.bPseudo)
        out << ", without an element of its own";
    out << '\n';
    for (Member const & member : type.members)
    {
        Member const & held = member.pInherited != nullptr ? *member.pInherited : member;
        out << "    " << held.strCppName << ": " << KindOf(member) << ' ' << TypeOf(member) << LimitsOf(member);
        if (member.bNillable)
            out << ", nillable";
        if (member.defaultValue)
            out << ", default \"" << *member.defaultValue << '"';
        if (member.fixedValue)
            out << ", fixed \"" << *member.fixedValue << '"';
        if (!member.alternatives.empty())
            out << ", " << member.alternatives.size() << " alternatives";
        out << '\n';
    }
}

} // namespace

void PrintReport(std::ostream & out, Model const & model)
{
    for (RootElement const & root : model.roots)
        out << "root " << root.strCppNamespace << "::" << root.strCppName << '\n';
    for (auto const & type : model.classes)
        PrintClass(out, *type);
    for (Loss const & loss : model.losses)
        out << ToString({Severity::Warning, loss.position, loss.strComponent + ": " + loss.strText}) << '\n';
    auto const nEnumerations = std::count_if(model.simpleTypes.begin(), model.simpleTypes.end(),
        [](auto const & type) { return type->bEnumClass && !type->cpp.strName.empty(); });
    out << model.roots.size() << " root elements, " << model.classes.size() << " classes, " << nEnumerations
        << " enumerations, " << model.losses.size() << " constructs that are not enforced or kept\n";
}

} // namespace QzXmlGen
