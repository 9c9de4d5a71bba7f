#pragma once

#include "tests/support/TestText.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <unistd.h>

/// A file of the running test, which goes with this object. Its name has a letter beyond ASCII.
class CTestFile
{
public:
    ~CTestFile() { std::remove(m_strPath.c_str()); }
    char16_t const * Name() const { return m_strName.c_str(); }
    bool Exists() const { return std::ifstream(m_strPath).is_open(); }
    std::string Content() const
    {
        std::ifstream file(m_strPath, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    void SetContent(std::string const & strContent) const { std::ofstream(m_strPath, std::ios::binary) << strContent; }

    std::u16string const m_strName = Wide(testing::TempDir() + std::to_string(::getpid())) + u"-\u00E4";
    std::string const m_strPath = Utf8(m_strName);
};
