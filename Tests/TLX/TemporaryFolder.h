#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

/** An empty folder that is removed with all its contents at the end. */
class CTemporaryFolder
{
public:
    CTemporaryFolder()
        : m_Path(std::filesystem::path(testing::TempDir()) /
                 ("tlx-" + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directory(m_Path);
    }
    ~CTemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_Path; }

    void Write(const std::string& name, std::string_view text) const
    {
        std::ofstream(m_Path / name, std::ios::binary) << text;
    }

    std::string Read(const std::string& name) const
    {
        std::ifstream file(m_Path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_Path;
};
