#pragma once

#include "generator/cli/Report.h"
#include "generator/model/ModelBuilder.h"
#include "generator/naming/Namer.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <xercesc/util/PlatformUtils.hpp>

/// Schema documents of the running test in a folder of their own.
class CSchemaFiles
{
public:
    explicit CSchemaFiles(std::map<std::string, std::string> const & files)
        : m_folder(std::filesystem::path(testing::TempDir()) / ("qzxmlgen" + std::to_string(::getpid())))
    {
        xercesc::XMLPlatformUtils::Initialize();
        std::filesystem::create_directories(m_folder);
        for (auto const & [strName, strText] : files)
            std::ofstream(m_folder / strName) << strText;
    }
    CSchemaFiles(CSchemaFiles const &) = delete;
    CSchemaFiles & operator=(CSchemaFiles const &) = delete;
    ~CSchemaFiles()
    {
        std::filesystem::remove_all(m_folder);
        xercesc::XMLPlatformUtils::Terminate();
    }

    std::string Path(std::string const & strName) const { return (m_folder / strName).string(); }

    /// The report of the classes, or the errors, with the folder left out.
    std::string Report(QzXmlGen::LoadOptions const & load, QzXmlGen::ModelOptions const & options = {},
        QzXmlGen::NamingOptions const & naming = {}) const
    {
        using namespace QzXmlGen;
        CDiagnostics diagnostics;
        CSchemaSet const schemas(load, diagnostics);
        std::ostringstream out;
        if (schemas.GetModel() != nullptr)
        {
            Model model = CModelBuilder(schemas, options, diagnostics).Build();
            CNamer(schemas, naming, diagnostics).Name(model);
            if (!diagnostics.HasErrors())
                PrintReport(out, model);
        }
        for (Diagnostic const & diagnostic : diagnostics.GetAll())
            out << ToString(diagnostic) << '\n';
        std::string strReport = out.str();
        std::string const strFolder = m_folder.string() + '/';
        for (std::size_t n = strReport.find(strFolder); n != std::string::npos; n = strReport.find(strFolder, n))
            strReport.erase(n, strFolder.size());
        return strReport;
    }

private:
    std::filesystem::path m_folder;
};

/// A schema document with the target namespace urn:t, which has the prefix t.
inline std::string Schema(
    std::string const & strBody, std::string const & strAttributes = "elementFormDefault='qualified'")
{
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' " +
           strAttributes + ">\n" + strBody + "\n</xs:schema>";
}
