#include "Ostrel/KnownControllers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(KnownControllers, AreFourInOrder)
{
    EXPECT_THAT(NAMESPACE_Ostrel::g_KnownControllers,
                testing::ElementsAre("80864140", "144DA822", "1E0F0007", "134451C3"));
}

} // namespace
