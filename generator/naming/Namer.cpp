#include "generator/naming/Namer.h"

#include "generator/naming/Identifiers.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

namespace QzXmlGen
{

namespace
{

/// The name with the first number from 2 on that makes it new to a set, which then holds it.
std::string Number(std::set<std::string> & taken, std::string const & strName)
{
    std::string strResult = strName;
    for (int n = 2; !taken.insert(strResult).second; ++n)
        strResult = strName + (std::isdigit(static_cast<unsigned char>(strName.back())) ? "_" : "") + std::to_string(n);
    return strResult;
}

char const * ToText(GroupKind eGroup)
{
    switch (eGroup)
    {
    case GroupKind::Choice:
        return "Choice";
    case GroupKind::All:
        return "All";
    default:
        return "Sequence";
    }
}

} // namespace

void CNamer::Name(Model & model)
{
    NameNamespaces(model);
    NameFiles(model);
    NameClasses(model);
    NameSimpleTypes(model);
    NameRoots(model);
    for (auto const & rename : m_options.renames)
        if (m_usedRenames.count(rename.first) == 0)
            m_diagnostics.Add(
                Severity::Error, {}, "nothing is called \"" + rename.first + "\", which is to be renamed");
}

std::string CNamer::Rename(std::string const & strQualifier, std::string strName)
{
    std::string const strKey = strQualifier.empty() ? strName : strQualifier + "::" + strName;
    auto const found = m_options.renames.find(strKey);
    if (found == m_options.renames.end())
        return strName;
    m_usedRenames.insert(strKey);
    return found->second;
}

std::string CNamer::MakeUnique(std::string const & strNamespace, std::string const & strName)
{
    return Rename(strNamespace, Number(m_taken[strNamespace], strName));
}

void CNamer::NameNamespaces(Model const & model)
{
    std::set<std::string> taken;
    auto const add = [&](std::string const & strUri, std::string const & strFile)
    {
        if (m_namespaces.count(strUri) != 0)
            return;
        auto const given = m_options.namespaces.find(strUri);
        if (given != m_options.namespaces.end())
        {
            m_namespaces[strUri] = given->second;
            return;
        }
        std::string strName = ToCppNamespace(strUri);
        if (strName.empty())
            strName = AvoidReserved(ToIdentifier(std::filesystem::path(strFile).stem().string()));
        m_namespaces[strUri] = Number(taken, strName);
    };
    for (auto const & document : m_schemas.GetDocuments())
        add(document.strNamespaceUri, document.strPath);
    for (auto const & type : model.classes)
        add(type->name.strNamespaceUri, "schema");
    for (auto const & type : model.simpleTypes)
        add(type->name.strNamespaceUri, "schema");
}

void CNamer::NameFiles(Model & model)
{
    std::set<std::string> taken;
    std::map<std::string, std::size_t> byKey;
    for (auto const & document : m_schemas.GetDocuments())
    {
        std::filesystem::path const path(document.strPath);
        std::string strKey = document.strPath;
        std::string strStem = path.stem().string();
        if (m_options.eLayout == FileLayout::PerNamespace)
        {
            strKey = document.strNamespaceUri;
            strStem = m_namespaces[strKey];
            std::replace(strStem.begin(), strStem.end(), ':', '_');
        }
        else if (m_options.eLayout == FileLayout::One)
            strKey.clear();
        auto const [place, bNew] = byKey.emplace(strKey, model.files.size());
        if (bNew)
            model.files.push_back({Number(taken, strStem), {}});
        model.files[place->second].schemas.push_back(path.filename().string());
        m_fileOfSchema[document.strPath] = place->second;
        m_fileOfNamespace.emplace(document.strNamespaceUri, place->second);
    }
}

std::size_t CNamer::FindFile(Position const & position, std::string const & strNamespaceUri) const
{
    auto const bySchema = m_fileOfSchema.find(position.strFile);
    if (bySchema != m_fileOfSchema.end())
        return bySchema->second;
    auto const byNamespace = m_fileOfNamespace.find(strNamespaceUri);
    return byNamespace == m_fileOfNamespace.end() ? 0 : byNamespace->second;
}

void CNamer::NameClasses(Model & model)
{
    // Named types come first, so that they keep their plain names.
    for (auto const & type : model.classes)
        if (!type->name.strLocal.empty())
            NameClass(*type);
    for (auto const & type : model.classes)
        if (type->name.strLocal.empty() && type->pOwner == nullptr)
            NameClass(*type);
    // What is nested takes its owner's name, and owners may be nested as well.
    for (bool bAgain = true; bAgain;)
    {
        bAgain = false;
        for (auto const & type : model.classes)
            if (type->cpp.strName.empty() && !type->pOwner->cpp.strName.empty())
            {
                NameClass(*type);
                bAgain = true;
            }
    }
    for (auto const & type : model.classes)
        NameMembers(*type);
}

void CNamer::NameClass(ClassType & type)
{
    std::string strName;
    if (type.pOwner != nullptr)
        strName = type.pOwner->cpp.strName +
                  (type.strElementName.empty() ? ToText(type.eGroup) : Capitalize(ToIdentifier(type.strElementName)));
    else if (!type.name.strLocal.empty())
        strName = 'C' + Capitalize(ToIdentifier(type.name.strLocal));
    else
        strName = 'C' + Capitalize(ToIdentifier(type.strElementName)) + (type.bPseudo ? "Group" : "");
    type.cpp.strNamespace = m_namespaces[type.name.strNamespaceUri];
    type.cpp.strName = MakeUnique(type.cpp.strNamespace, strName);
    type.cpp.nFile = FindFile(type.position, type.name.strNamespaceUri);
}

void CNamer::NameMembers(ClassType & type)
{
    std::set<std::string> taken;
    // A member must not hide one of a base class.
    for (ClassType const * pBase = type.pBase; pBase != nullptr; pBase = pBase->pBase)
        for (Member const & member : pBase->members)
            taken.insert(member.strCppName.empty() ? "m_" + ToIdentifier(member.name.strLocal) : member.strCppName);
    for (Member & member : type.members)
    {
        if (member.pInherited != nullptr)
            continue;
        std::string strLocal = member.name.strLocal;
        if (strLocal.empty() && member.pClass != nullptr)
            strLocal = member.pClass->eGroup == GroupKind::Choice ? "choice" : "group";
        std::string const strName = Number(taken, "m_" + ToIdentifier(strLocal));
        member.strCppName = Rename(type.cpp.strNamespace + "::" + type.cpp.strName, strName);
    }
}

void CNamer::NameSimpleTypes(Model & model)
{
    for (auto const & type : model.simpleTypes)
        if (type->bDescribed && !type->name.strLocal.empty())
        {
            bool const bBuiltIn = type->position.strFile.empty();
            CppName const owner{bBuiltIn && !model.files.empty()
                                    ? m_namespaces[m_schemas.GetDocuments().front().strNamespaceUri]
                                    : m_namespaces[type->name.strNamespaceUri],
                {}, bBuiltIn ? 0 : FindFile(type->position, type->name.strNamespaceUri)};
            NameSimpleType(*type, owner, Capitalize(ToIdentifier(type->name.strLocal)));
        }
    for (auto const & type : model.classes)
        NameUsedTypes(*type);
    // Anonymous items and members of named types, and types of elements.
    for (bool bAgain = true; bAgain;)
    {
        bAgain = false;
        for (std::size_t i = 0; i < model.simpleTypes.size(); ++i)
        {
            SimpleType & type = *model.simpleTypes[i];
            if (type.cpp.strName.empty())
                continue;
            auto const name = [&](SimpleType const * pPart)
            {
                auto * const pType = const_cast<SimpleType *>(pPart);
                if (pType == nullptr || !pType->bDescribed || !pType->cpp.strName.empty())
                    return;
                NameSimpleType(*pType, type.cpp, type.cpp.strName + "Item");
                bAgain = true;
            };
            name(type.pItem);
            for (SimpleType const * pMember : type.members)
                name(pMember);
        }
    }
}

void CNamer::NameUsedTypes(ClassType & type)
{
    for (Member const & member : type.members)
    {
        auto * const pType = const_cast<SimpleType *>(member.pType);
        if (pType == nullptr || !pType->bDescribed || !pType->cpp.strName.empty())
            continue;
        std::string const strOwner = type.cpp.strName.substr(1);
        NameSimpleType(*pType, type.cpp, strOwner + Capitalize(ToIdentifier(member.name.strLocal)));
    }
}

void CNamer::NameSimpleType(SimpleType & type, CppName const & owner, std::string const & strProposal)
{
    type.cpp.strNamespace = owner.strNamespace;
    type.cpp.nFile = owner.nFile;
    type.cpp.strName = MakeUnique(owner.strNamespace, AvoidReserved(strProposal));
    std::set<std::string> taken;
    std::string const strQualifier = type.cpp.strNamespace + "::" + type.cpp.strName;
    for (EnumValue & value : type.enumeration)
        value.strCppName = Rename(strQualifier, Number(taken, AvoidReserved(ToIdentifier(value.strText))));
}

void CNamer::NameRoots(Model & model)
{
    std::map<std::string, std::set<std::string>> taken;
    for (RootElement & root : model.roots)
    {
        root.strCppNamespace = m_namespaces[root.name.strNamespaceUri];
        root.nFile = FindFile(root.position, root.name.strNamespaceUri);
        root.strCppName = Number(taken[root.strCppNamespace], Capitalize(ToIdentifier(root.name.strLocal)));
        std::string const strRead = Rename(root.strCppNamespace, "Read" + root.strCppName);
        if (strRead.compare(0, 4, "Read") == 0)
            root.strCppName = strRead.substr(4);
        // Types of elements that no class uses.
        auto * const pType = const_cast<SimpleType *>(root.pType);
        if (pType != nullptr && pType->bDescribed && pType->cpp.strName.empty())
            NameSimpleType(*pType, {root.strCppNamespace, {}, root.nFile}, root.strCppName + "Value");
    }
}

} // namespace QzXmlGen
