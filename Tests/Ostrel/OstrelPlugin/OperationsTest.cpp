#include "OstrelPlugin/Operations.h"

#include <gtest/gtest.h>

namespace {

TEST(PluginOperations, AreTheFetchingOfEventsAlone)
{
    const auto operations = NAMESPACE_Ostrel::pluginOperations();
    ASSERT_EQ(operations.size(), 1U);
    EXPECT_EQ(operations[0].Id(), PI::OPERATION_GET_EVENTS);
    EXPECT_EQ(operations[0].RequestedId(), PI::OPERATION_GET_EVENTS);
    EXPECT_EQ(operations[0].Words(),
              (PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1}));
    EXPECT_TRUE(operations[0].Events().empty());
}

} // namespace
