#include "PluginLibrary.h"
#include "Support/AllocationFailure/AllocationFailure.h"

#include <PI/ErrorCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<std::string> exportedSymbols()
{
    constexpr char COMMAND[] = "'" OSTREL_NM "' -D --defined-only --format=posix '" OSTREL_LIBRARY "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(COMMAND, "r"), pclose);
    if (!pipe)
        throw std::runtime_error("cannot run nm");
    std::vector<std::string> symbols;
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), line.size(), pipe.get()) != nullptr) {
        std::istringstream words(line.data());
        words >> symbols.emplace_back();
    }
    return symbols;
}

} // namespace

TEST(Exports, AreTheTwoFunctionsAndNothingElse)
{
    EXPECT_THAT(exportedSymbols(), testing::UnorderedElementsAre("createIf", "releaseIf"));
}

TEST(Exports, CreateIfMakesAnObjectThatTellsWhatItIs)
{
    const CPluginLibrary library;
    IPLUGINAPI* plugin = nullptr;
    ASSERT_EQ(library.m_CreateIf(&plugin), 0U);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->m_Version, 2U);
    EXPECT_EQ(plugin->m_Module, 313U);
    EXPECT_EQ(plugin->m_HostContext, 0U);
    EXPECT_EQ(plugin->m_HostCallback, nullptr);

    library.m_ReleaseIf(&plugin);
    EXPECT_EQ(plugin, nullptr);
}

TEST(Exports, ReleaseIfAcceptsNull)
{
    const CPluginLibrary library;
    IPLUGINAPI* plugin = nullptr;
    library.m_ReleaseIf(&plugin);
    EXPECT_EQ(plugin, nullptr);
    library.m_ReleaseIf(nullptr);
}

TEST(Exports, CreateIfWithoutAPlaceForThePointerIsAGeneralFailure)
{
    const CPluginLibrary library;
    EXPECT_EQ(library.m_CreateIf(nullptr), PI::ERR_GENERAL_FAILURE);
}

TEST(Exports, CreateIfWithoutMemoryStoresNullAndSaysSo)
{
    const CPluginLibrary library;
    auto* plugin = reinterpret_cast<IPLUGINAPI*>(std::uintptr_t{1});
    std::uint32_t result = 0;
    {
        const CAllocationFailure failure(0);
        result = library.m_CreateIf(&plugin);
    }
    EXPECT_EQ(result, PI::ERR_OUT_OF_MEMORY);
    EXPECT_EQ(plugin, nullptr);
}

TEST(Exports, CreateIfGivesAWholeObjectOrNoneWhicheverAllocationFails)
{
    const CPluginLibrary library;
    bool failed = true;
    for (long allocations = 0; failed; ++allocations) {
        auto* plugin = reinterpret_cast<IPLUGINAPI*>(std::uintptr_t{1});
        std::uint32_t result = 0;
        {
            const CAllocationFailure failure(allocations);
            result = library.m_CreateIf(&plugin);
            failed = !CAllocationFailure::Pending();
        }
        SCOPED_TRACE(allocations);
        if (result == PI::ERR_SUCCESS) {
            ASSERT_NE(plugin, nullptr);
            library.m_ReleaseIf(&plugin);
        } else {
            ASSERT_EQ(result, PI::ERR_OUT_OF_MEMORY);
            ASSERT_EQ(plugin, nullptr);
        }
    }
}

TEST(Exports, CreateIfTurnsAnyOtherFailureIntoAGeneralOne)
{
    const CPluginLibrary library;
    auto* plugin = reinterpret_cast<IPLUGINAPI*>(std::uintptr_t{1});
    std::uint32_t result = 0;
    {
        const CAllocationFailure failure(0, Failure::SomethingElse);
        result = library.m_CreateIf(&plugin);
    }
    EXPECT_EQ(result, PI::ERR_GENERAL_FAILURE);
    EXPECT_EQ(plugin, nullptr);
}
