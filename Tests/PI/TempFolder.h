#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ios>
#include <random>
#include <string>
#include <string_view>

/** A folder of a test's own, removed with all it holds when the test is over. */
class TempFolder
{
public:
    TempFolder()
        : m_Path(
              std::filesystem::temp_directory_path() /
              ("PITest-" + std::to_string(std::random_device()()) + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directories(m_Path);
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return m_Path; }

    std::filesystem::path Write(const std::string& name, std::string_view content) const
    {
        auto file = m_Path / name;
        std::ofstream stream(file, std::ios::binary | std::ios::trunc);
        stream << content;
        stream.close();
        EXPECT_TRUE(stream.good()) << file;
        return file;
    }

private:
    std::filesystem::path m_Path;
};
