#include <PI/IPluginApi.h>
#include <PI/Object.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace {

PI::CObject sample()
{
    PI::CObject object;
    object.m_ID = 7;
    object.m_Type = PI::TYPE_ADAPTER;
    object.m_Parents = {1};
    object.m_Children = {2, 3};
    object.m_UpdateCount = 5;
    object.m_Properties.emplace_back(PI::PROP_NAME, false);
    object.m_Operations.emplace_back(
        PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1});
    return object;
}

TEST(Object, StartsEmpty)
{
    const PI::CObject object;
    EXPECT_EQ(object.m_ID, 0U);
    EXPECT_EQ(object.m_Type, 0U);
    EXPECT_EQ(object.m_UpdateCount, 0U);
    EXPECT_TRUE(object.m_Parents.empty());
    EXPECT_TRUE(object.m_Children.empty());
    EXPECT_TRUE(object.m_Properties.empty());
    EXPECT_TRUE(object.m_Operations.empty());
}

TEST(Object, CopiesAreDeep)
{
    PI::CObject first = sample();
    PI::CObject copy = first;
    first.m_Children.clear();
    first.m_Properties.clear();
    EXPECT_EQ(copy.m_ID, 7U);
    EXPECT_EQ(copy.m_Type, PI::TYPE_ADAPTER);
    EXPECT_EQ(copy.m_Parents, std::vector<std::uint64_t>{1});
    EXPECT_EQ(copy.m_Children, (std::vector<std::uint64_t>{2, 3}));
    EXPECT_EQ(copy.m_UpdateCount, 5U);
    ASSERT_EQ(copy.m_Properties.size(), 1U);
    EXPECT_EQ(copy.m_Properties[0].Id(), PI::PROP_NAME);
    ASSERT_EQ(copy.m_Operations.size(), 1U);
    EXPECT_EQ(copy.m_Operations[0].Id(), PI::OPERATION_GET_EVENTS);
    EXPECT_EQ(copy.m_Operations[0].RequestedId(), PI::OPERATION_GET_EVENTS);

    PI::CObject assigned;
    assigned = copy;
    copy.m_Parents.clear();
    EXPECT_EQ(assigned.m_Parents, std::vector<std::uint64_t>{1});
}

TEST(Object, MovesKeepTheValues)
{
    PI::CObject source = sample();
    PI::CObject moved = std::move(source);
    EXPECT_EQ(moved.m_Children, (std::vector<std::uint64_t>{2, 3}));
    PI::CObject assigned;
    assigned = std::move(moved);
    EXPECT_EQ(assigned.m_Children, (std::vector<std::uint64_t>{2, 3}));
    EXPECT_EQ(assigned.m_ID, 7U);
}

TEST(Object, IsDestroyedThroughItsBase)
{
    struct CDerived : PI::CObject
    {
        explicit CDerived(bool& destroyed) : m_Destroyed(destroyed) {}
        CDerived(const CDerived&) = delete;
        CDerived& operator=(const CDerived&) = delete;
        ~CDerived() override { m_Destroyed = true; }
        bool& m_Destroyed;
    };
    bool destroyed = false;
    std::unique_ptr<PI::CObject> object = std::make_unique<CDerived>(destroyed);
    object.reset();
    EXPECT_TRUE(destroyed);
}

TEST(PluginApi, IsDestroyedThroughTheInterface)
{
    struct CPlugin : IPLUGINAPI
    {
        explicit CPlugin(bool& destroyed) : m_Destroyed(destroyed) {}
        ~CPlugin() override { m_Destroyed = true; }
        std::uint32_t Request(std::int32_t request, std::uint64_t, PI::CRequestData&) override
        {
            return static_cast<std::uint32_t>(request);
        }
        bool& m_Destroyed;
    };
    bool destroyed = false;
    std::unique_ptr<IPLUGINAPI> plugin = std::make_unique<CPlugin>(destroyed);
    PI::CRequestData data;
    EXPECT_EQ(plugin->Request(PI::REQUEST_GET_TOPOLOGY, 0, data), 4U);
    // A copy, because on Windows a reference to a constant of another library is not possible.
    EXPECT_EQ(plugin->m_Version, +IPLUGINAPI::VERSION);
    EXPECT_EQ(plugin->m_HostCallback, nullptr);
    plugin.reset();
    EXPECT_TRUE(destroyed);
}

} // namespace
