#include "Base/Platform.h"

#include <TLX/Linux/Descriptor.h>

#include <gtest/gtest.h>

#include <fcntl.h>

namespace {

TEST(ProcessFiguresTest, CountWhatThisProcessUses)
{
    const Host::Platform::ProcessFigures before = Host::Platform::processFigures();
    ASSERT_TRUE(before.m_ProcessorSeconds && before.m_ResidentBytes && before.m_OpenDescriptors);
    EXPECT_GT(*before.m_ResidentBytes, 1'000'000U);
    const TLX::Linux::CDescriptor more(open("/dev/null", O_RDONLY | O_CLOEXEC));
    const Host::Platform::ProcessFigures after = Host::Platform::processFigures();
    EXPECT_EQ(*after.m_OpenDescriptors, *before.m_OpenDescriptors + 1);
    EXPECT_GT(*after.m_ProcessorSeconds, 0);
    EXPECT_GE(*after.m_ProcessorSeconds, *before.m_ProcessorSeconds);
}

} // namespace
