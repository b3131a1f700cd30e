#include "Support_Win/Image.h"

#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <windows.h>

namespace {

/** The built plug-in library, loaded as a host does it. */
class Exports : public testing::Test
{
protected:
    Exports() : m_Library(LoadLibraryW(L"Ostrel.dll")) {}
    ~Exports() override { FreeLibrary(m_Library); }

    void SetUp() override { ASSERT_NE(m_Library, nullptr); }

    std::vector<std::string> Names() const
    {
        using TestSupport::at;
        auto* const base = reinterpret_cast<std::uint8_t*>(m_Library);
        const auto& directory = TestSupport::imageDirectory(base, IMAGE_DIRECTORY_ENTRY_EXPORT);
        const auto* const table = at<IMAGE_EXPORT_DIRECTORY>(base, directory.VirtualAddress);
        // Exports without a name are not allowed either.
        EXPECT_EQ(table->NumberOfFunctions, table->NumberOfNames);
        const auto* const names = at<DWORD>(base, table->AddressOfNames);
        std::vector<std::string> result;
        for (DWORD i = 0; i < table->NumberOfNames; ++i)
            result.emplace_back(at<char>(base, names[i]));
        return result;
    }

    template<typename Function>
    Function Get(const char* name) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_Library, name)));
    }

    HMODULE m_Library;
};

TEST_F(Exports, AreTheTwoFunctionsAndNothingElse)
{
    EXPECT_THAT(Names(), testing::UnorderedElementsAre("createIf", "releaseIf"));
}

TEST_F(Exports, MakeAnObjectThatTellsWhatItIsAndReleaseIt)
{
    const auto createIf = Get<CreateIfFunction>("createIf");
    const auto releaseIf = Get<ReleaseIfFunction>("releaseIf");
    IPLUGINAPI* plugin = nullptr;
    ASSERT_EQ(createIf(&plugin), 0U);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->m_Version, 2U);
    EXPECT_EQ(plugin->m_Module, 313U);
    PI::CRequestData data;
    EXPECT_EQ(plugin->Request(11, 0, data), PI::ERR_UNKNOWN_REQUEST);
    releaseIf(&plugin);
    EXPECT_EQ(plugin, nullptr);
    releaseIf(&plugin);
    releaseIf(nullptr);
    EXPECT_EQ(createIf(nullptr), PI::ERR_GENERAL_FAILURE);
}

} // namespace
