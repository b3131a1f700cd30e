#include "LineCapture.h"

#include <TLX/TraceStreamBuffer.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

using namespace TLX::Trace;

// As in a plug-in: constructed when the library is loaded, in no fixed order with objects of other sources.
const CTestModule g_StaticModule(9100);

/** A module number that never had a mask, because masks are remembered. */
std::uint32_t unusedNumber()
{
    static std::uint32_t number = 91'000;
    return ++number;
}

TEST(ModuleInfo, TellsWhatItWasMadeFrom)
{
    const TLX::Language_Support::CLanguageSupport::CLngFile file(
        "Ostrel.nls", 25966, "utf-8", 1,
        {"General error in Ostrel plugin", "No information available for this error"});
    const TLX::Misc::CModuleInfo info(313, "Ostrel", "P:7.16.3 F:7.16.3", file, {});
    EXPECT_EQ(info.Number(), 313U);
    EXPECT_EQ(info.Name(), "Ostrel");
    EXPECT_EQ(info.Version(), "P:7.16.3 F:7.16.3");
    EXPECT_EQ(&info.LanguageFile(), &file);
    EXPECT_EQ(info.Errors().m_Size, sizeof(TLX::Misc::CErrorMessageList));
    EXPECT_EQ(info.TraceMask(), 0U);
}

TEST(ModuleInfo, MadeWithTheLibraryTakesMasks)
{
    setMask(9100, 2);
    EXPECT_EQ(g_StaticModule.m_Info.TraceMask(), 2U);
    setMask(9100, 0);
    EXPECT_EQ(g_StaticModule.m_Info.TraceMask(), 0U);
}

TEST(ModuleInfo, AMaskSetBeforeTheModuleIsLoadedHoldsAtOnce)
{
    setMask(9101, 0x80000010U);
    const CTestModule module(9101);
    EXPECT_EQ(module.m_Info.TraceMask(), 0x80000010U);
}

TEST(ModuleInfo, AMaskOutlivesTheModule)
{
    auto module = std::make_unique<CTestModule>(9102);
    setMask(9102, 8);
    module.reset();
    setMask(9102, 16);
    module = std::make_unique<CTestModule>(9102);
    EXPECT_EQ(module->m_Info.TraceMask(), 16U);
}

TEST(ModuleInfo, TheDefaultMaskIsForModulesWithoutTheirOwn)
{
    const std::uint32_t number = unusedNumber();
    const CTestModule before(number);
    const CTestModule own(9104);
    setMask(9104, 4);
    setDefaultMask(2);
    const CTestModule after(unusedNumber());
    EXPECT_EQ(before.m_Info.TraceMask(), 2U);
    EXPECT_EQ(own.m_Info.TraceMask(), 4U);
    EXPECT_EQ(after.m_Info.TraceMask(), 2U);
    setMask(number, 0);
    setDefaultMask(8);
    EXPECT_EQ(before.m_Info.TraceMask(), 0U);
    EXPECT_EQ(after.m_Info.TraceMask(), 8U);
    setDefaultMask(0);
    EXPECT_EQ(after.m_Info.TraceMask(), 0U);
}

TEST(ModuleInfo, ModulesComeAndGoWhileMasksAreSet)
{
    {
        const std::jthread loading([] {
            for (int round = 0; round < 300; ++round) {
                const CTestModule module(9106);
                EXPECT_LE(module.m_Info.TraceMask(), 300U);
            }
        });
        for (std::uint32_t mask = 1; mask <= 300; ++mask)
            setMask(9106, mask);
    }
    EXPECT_EQ(CTestModule(9106).m_Info.TraceMask(), 300U);
}

} // namespace
