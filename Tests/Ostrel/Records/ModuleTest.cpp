#include "Records/Module.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using NAMESPACE_Ostrel::g_ModuleInfo;

TEST(Module, TellsWhatItIs)
{
    EXPECT_EQ(g_ModuleInfo.Number(), 313U);
    EXPECT_EQ(g_ModuleInfo.Name(), "Ostrel");
    EXPECT_EQ(g_ModuleInfo.Version(), "P:7.16.3 F:7.16.3");
}

TEST(Module, NamesItsCatalogue)
{
    const auto& file = g_ModuleInfo.LanguageFile();
    EXPECT_EQ(file.FileName(), "Ostrel.nls");
    EXPECT_EQ(file.LanguageCode(), 25966U);
    EXPECT_EQ(file.Encoding(), "utf-8");
    EXPECT_EQ(file.FormatNumber(), 1U);
    EXPECT_EQ(file.DefaultErrors(), (std::vector<std::string>{"General error in Ostrel plugin",
                                                              "No information available for this error"}));
}

TEST(Module, HandsOverAnEmptyErrorList)
{
    const auto& errors = g_ModuleInfo.Errors();
    EXPECT_EQ(errors.m_Size, sizeof errors);
    for (const std::uint32_t word : errors.m_Reserved)
        EXPECT_EQ(word, 0U);
}

TEST(Module, PrintsToStandardOutputAtOnce)
{
    testing::internal::CaptureStdout();
    NAMESPACE_Ostrel::consolePrint("%s:  %lu\n", "Ostrel", 2UL);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Ostrel:  2\n");
}

} // namespace
