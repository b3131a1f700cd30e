#include "Support/SourceTree.h"

#include <PI/PluginHelper.h>
#include <TLX/LanguageSupport.h>
#include <TLX/ModuleInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {
using TLX::Language_Support::CLanguageSupport;

// Every number that objects, properties, values, events and operations carry to the host.
const std::vector<std::uint32_t>& numbersInUse()
{
    static const std::vector<std::uint32_t> numbers = {
        // object types
        19002, 19006, 19018, 19038,
        // units
        21000, 21001, 21002, 21003, 21004, 21005, 21006, 21007, 21008, 21010, 21025,
        // captions of adapters
        23081, 23144, 23102, 23003, 23127, 23134, 23132, 23133, 23135, 23116, 23051, 23016, 23090, 23041,
        23042, 23024, 23045, 23101, 23110, 23112, 23113, 23017, 23018, 23105, 23147, 23143, 23004,
        // captions that replace others
        35023, 35039, 35016, 35020, 35022, 35034, 30017, 35045,
        // captions of physical drives
        23298, 23305, 23284, 23331, 23308, 23329, 23304, 23281, 23324, 23290, 23289, 23278, 23326, 23320,
        // captions of the plug-in
        23334, 23339, 23338, 23335,
        // icons
        24000, 24001, 24002, 24177, 24183, 24189,
        // known family; health; spare state; wear state
        40480, 40488, 40024, 40150, 40095, 40473, 40474, 40252, 40410, 40411,
        // state and type of drives
        40099, 40180, 40200,
        // status reasons that are given, and those that are allowed
        40459, 40460, 40449, 40487, 40452, 40387, 40128, 40393, 40394, 40395, 40396, 40397, 40398, 40399,
        40400, 40401, 40402, 40266,
        // events
        11093, 11094, 10957, 11088, 10959, 10960, 10967, 10962, 10968, 10980, 10985,
        // operations
        50002};
    return numbers;
}

struct CatalogueTest : testing::Test
{
    CatalogueTest() { CLanguageSupport::SetFolder(TestSupport::sourceTree("Ostrel/Data")); }

    CLanguageSupport::CLngFile m_File{"Ostrel.nls", 0x656E, "UTF-8", 1, {}};
    TLX::Misc::CModuleInfo m_Module{313, "Catalogue", "1", m_File, {}};
};

TEST_F(CatalogueTest, HasATextForEveryNumberInUse)
{
    for (const auto number : numbersInUse()) {
        const auto text = m_File.Text(number);
        ASSERT_TRUE(text.has_value()) << number;
        EXPECT_FALSE(text->empty()) << number;
        EXPECT_NE(text->front(), ' ') << number;
        EXPECT_NE(text->back(), ' ') << number;
        EXPECT_EQ(PI::PropertyValueToString(number), *text);
    }
}

TEST_F(CatalogueTest, TextsSayWhatTheCodesMean)
{
    EXPECT_EQ(PI::PropertyValueToString(40024), "Healthy");
    EXPECT_EQ(PI::PropertyValueToString(40150), "Degraded");
    EXPECT_EQ(PI::PropertyValueToString(40095), "Critical");
    EXPECT_EQ(PI::PropertyValueToString(40480), "Yes");
    EXPECT_EQ(PI::PropertyValueToString(40488), "No");
    EXPECT_EQ(PI::PropertyValueToString(40200), "SSD");
    EXPECT_EQ(PI::PropertyValueToString(21000), "\u00B0C");
    EXPECT_EQ(PI::PropertyValueToString(23335), "Poll interval");
}

TEST_F(CatalogueTest, ACodeWithoutEntryIsItsNumber)
{
    EXPECT_EQ(PI::PropertyValueToString(0), "0");
    EXPECT_EQ(PI::PropertyValueToString(1), "1");
    EXPECT_EQ(PI::PropertyValueToString(99999), "99999");
    EXPECT_EQ(PI::PropertyValueToString(4294967295U), "4294967295");
}

TEST_F(CatalogueTest, EventsNameTheirSource)
{
    for (const std::uint32_t event : {11093, 11094, 10957, 11088, 10959, 10960, 10967, 10962, 10968, 10980}) {
        EXPECT_THAT(PI::PropertyValueToString(event), testing::HasSubstr("%1")) << event;
        EXPECT_THAT(PI::PropertyValueToString(event), testing::Not(testing::HasSubstr("%2"))) << event;
    }
    EXPECT_THAT(PI::PropertyValueToString(10985), testing::HasSubstr("%1"));
    EXPECT_THAT(PI::PropertyValueToString(10985), testing::HasSubstr("%2"));
}

TEST(CatalogueFile, HoldsEachNumberInUseOnceAndNoOther)
{
    std::ifstream file(TestSupport::sourceTree("Ostrel/Data/Ostrel.nls"));
    ASSERT_TRUE(file);
    std::multiset<std::uint32_t> found;
    for (std::string line; std::getline(file, line);) {
        EXPECT_EQ(line.find('\r'), std::string::npos) << line;
        if (line.empty() || line.front() == '#') {
            continue;
        }
        std::istringstream words(line);
        std::uint32_t number = 0;
        std::string word;
        EXPECT_TRUE(words >> number >> word) << line;
        found.insert(number);
    }
    EXPECT_EQ(found, std::multiset<std::uint32_t>(numbersInUse().begin(), numbersInUse().end()));
}

} // namespace
