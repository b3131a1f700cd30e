#include "Base/Failure.h"
#include "Drives/SimulatedFleet.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Other systems do not allow such a file name.
TEST(SimulatedFleetName, WithALineEndForgesNoLineOfAMessage)
{
    const TestSupport::CTemporaryFolder folder;
    try {
        const Host::SimulatedFleet fleet(folder.Write("b\nc", "{}"), [](const std::string&) {});
        FAIL() << "accepted";
    } catch (const Host::Failure& failure) {
        EXPECT_THAT(failure.what(), AllOf(HasSubstr("b?c"), Not(HasSubstr("\n"))));
    }
}

} // namespace
