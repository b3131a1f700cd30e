#include "Support/ExpectedProperty.h"
#include "Support/TraceCapture.h"
#include "Support/TryElsewhere.h"
#include "WorkerFixture.h"

#include <PI/CaptionId.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::CFakeDrive;
using TestSupport::CTraceCapture;

/** A plug-in with two adapters; no worker. */
class PropertyRequests : public TestSupport::CWorkerFixture
{
protected:
    PropertyRequests()
    {
        m_Drives.Add(CFakeDrive(0));
        m_Drives.Add(CFakeDrive(1));
        Initialize();
        m_Plugin = m_Api.m_Plugin.m_ID;
        m_Adapter = m_Api.m_Adapters.at(1).m_ID;
        m_Drive = m_Api.m_PhysicalDrives.at(1).m_ID;
    }

    /** Request 5, with a list that is not empty before. */
    std::uint32_t GetAll(std::uint64_t id)
    {
        PI::CRequestData data = std::vector<PI::CProperty>(2);
        const std::uint32_t result = m_Api.Request(PI::REQUEST_GET_PROPERTIES, id, data);
        m_Properties = std::get<std::vector<PI::CProperty>>(data);
        return result;
    }

    /** Request 6. */
    std::uint32_t Get(std::uint64_t id, std::uint32_t propertyId)
    {
        PI::CProperty property(propertyId, false);
        property.SetValue("before");
        PI::CRequestData data = property;
        const std::uint32_t result = m_Api.Request(PI::REQUEST_GET_PROPERTY, id, data);
        m_Property = std::get<PI::CProperty>(data);
        return result;
    }

    /** Request 7. */
    std::uint32_t Set(std::uint64_t id, std::uint32_t propertyId, std::int32_t value)
    {
        PI::CProperty property(propertyId, true);
        property.SetValue(value, 2, 255, 1);
        PI::CRequestData data = property;
        return m_Api.Request(PI::REQUEST_SET_PROPERTY, id, data);
    }

    std::string Text() const { return std::get<std::string>(m_Property.GetValue()); }

    std::uint64_t m_Plugin = 0;
    std::uint64_t m_Adapter = 0;
    std::uint64_t m_Drive = 0;
    std::vector<PI::CProperty> m_Properties;
    PI::CProperty m_Property;
};

/** Request 5, 6 or 7 with a trace mask. */
class PropertyRequestsTrace : public PropertyRequests, public testing::WithParamInterface<std::uint32_t>
{
protected:
    /** Sends a request and compares its own lines ("level text") with those that the mask shows. */
    template<typename Action>
    void Expect(const std::string& name, Action action, const std::vector<std::string>& all)
    {
        const CTraceCapture capture(GetParam());
        action();
        std::vector<std::string> shown;
        for (const auto& line : all)
            if ((std::stoul(line) & GetParam()) != 0)
                shown.push_back(line);
        std::vector<std::string> own;
        for (const auto& line : capture.Lines())
            if (line.m_Function == "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::" + name)
                own.push_back(std::to_string(line.m_Level) + ' ' + line.m_Text);
        EXPECT_EQ(own, shown);
    }
};

} // namespace

TEST_F(PropertyRequests, GetAllPropertiesOfEachKindOfObject)
{
    EXPECT_EQ(GetAll(m_Plugin), PI::ERR_SUCCESS);
    EXPECT_THAT(TestSupport::propertyIds(m_Properties),
                ElementsAre(PI::PROP_LOCATION, PI::PROP_NAME, PI::PROP_VERSION, PI::PROP_VENDOR,
                            PI::PROP_POLL_INTERVAL));

    EXPECT_EQ(GetAll(m_Adapter), PI::ERR_SUCCESS);
    EXPECT_THAT(TestSupport::propertyIds(m_Properties), testing::Contains(PI::PROP_SPARE_STATE));
    EXPECT_EQ(Get(m_Adapter, PI::PROP_SERIAL_NUMBER), PI::ERR_SUCCESS);
    EXPECT_EQ(Text(), "SN1");

    EXPECT_EQ(GetAll(m_Drive), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Properties, SizeIs(15));
    EXPECT_EQ(Get(m_Drive, PI::PROP_LOCATION), PI::ERR_SUCCESS);
    EXPECT_EQ(Text(), "PCI:Bus=1&Device=0&Function=0&ID=0");
}

TEST_F(PropertyRequests, GetOneReplacesTheWholeProperty)
{
    EXPECT_EQ(Get(m_Plugin, PI::PROP_POLL_INTERVAL), PI::ERR_SUCCESS);
    EXPECT_TRUE(m_Property.Settable());
    EXPECT_EQ(m_Property.NlsID(), PI::PLUGIN_CAPTION_POLL_INTERVAL);
    EXPECT_EQ(m_Property.Units(), PI::UNIT_SECONDS);
    EXPECT_EQ(m_Property.GetValue(), PI::CProperty::Value(PI::CBoundedValue{30, 2, 255, 1}));
    EXPECT_EQ(Get(m_Plugin, PI::PROP_VERSION), PI::ERR_SUCCESS);
    EXPECT_EQ(Text(), "7.16.3");
}

TEST_F(PropertyRequests, APropertyThatTheObjectDoesNotHaveIsAGeneralFailure)
{
    for (const std::uint64_t id : {m_Plugin, m_Adapter, m_Drive}) {
        EXPECT_EQ(Get(id, 31000), PI::ERR_GENERAL_FAILURE);
        EXPECT_EQ(m_Property.Id(), 31000U);
        EXPECT_EQ(Text(), "before");
    }
    EXPECT_EQ(Get(m_Adapter, PI::PROP_TEMPERATURE), PI::ERR_GENERAL_FAILURE) << "not of a known family";
    EXPECT_EQ(Text(), "before");
}

TEST_F(PropertyRequests, AnUnknownObjectIsNotFound)
{
    for (const std::uint64_t id :
         {std::uint64_t{0}, std::uint64_t{1}, m_Plugin | 0xFFFF, m_Adapter & 0xFFFF}) {
        EXPECT_EQ(GetAll(id), PI::ERR_OBJECT_NOT_FOUND);
        EXPECT_THAT(m_Properties, IsEmpty());
        EXPECT_EQ(Get(id, PI::PROP_NAME), PI::ERR_OBJECT_NOT_FOUND);
        EXPECT_EQ(Text(), "before");
        EXPECT_EQ(Set(id, PI::PROP_POLL_INTERVAL, 60), PI::ERR_OBJECT_NOT_FOUND);
    }
    EXPECT_EQ(m_Api.m_PollInterval, 30U);
}

TEST_F(PropertyRequests, NothingIsFoundBeforeInitialisation)
{
    TestSupport::CPluginUnderTest fresh;
    PI::CRequestData data = std::vector<PI::CProperty>();
    EXPECT_EQ(fresh.Request(PI::REQUEST_GET_PROPERTIES, 0, data), PI::ERR_OBJECT_NOT_FOUND);
}

TEST_F(PropertyRequests, WithoutAdaptersTheDrivesAreSearched)
{
    m_Api.m_Adapters.clear();
    EXPECT_EQ(GetAll(m_Drive), PI::ERR_SUCCESS);
    EXPECT_EQ(GetAll(m_Adapter), PI::ERR_OBJECT_NOT_FOUND);
}

TEST_F(PropertyRequests, ThePluginComesBeforeAdaptersAndTheyBeforeDrives)
{
    m_Api.m_Adapters[1].m_ID = m_Plugin;
    EXPECT_EQ(GetAll(m_Plugin), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Properties, SizeIs(5));
    m_Api.m_Adapters[0].m_ID = m_Drive;
    m_Api.m_Adapters[1].m_ID = m_Drive;
    EXPECT_EQ(Get(m_Drive, PI::PROP_SERIAL_NUMBER), PI::ERR_SUCCESS);
    EXPECT_EQ(Text(), "SN0") << "the first of several";
}

TEST_F(PropertyRequests, NothingOfAnAdapterOrADriveCanBeSet)
{
    for (const std::uint64_t id : {m_Adapter, m_Drive})
        for (const std::uint32_t property : std::initializer_list<std::uint32_t>{
                 PI::PROP_POLL_INTERVAL, PI::PROP_NAME, PI::ALL_PROPERTIES, 0})
            EXPECT_EQ(Set(id, property, 60), PI::ERR_PROPERTY_NOT_SETTABLE);
    EXPECT_EQ(m_Api.m_PollInterval, 30U);
}

TEST_F(PropertyRequests, TheIntervalOfThePluginCanBeSet)
{
    EXPECT_EQ(Set(m_Plugin, PI::PROP_POLL_INTERVAL, 60), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 60U);
    EXPECT_EQ(Set(m_Plugin, PI::PROP_NAME, 61), PI::ERR_PROPERTY_NOT_SETTABLE);
    EXPECT_EQ(m_Api.m_PollInterval, 60U);
}

TEST_F(PropertyRequests, AFailureGivesTheLockBack)
{
    m_Api.m_Adapters[1].m_Vendor = "INTEL";
    m_Api.m_Adapters[1].m_Model = "INTEL";
    EXPECT_EQ(GetAll(m_Adapter), PI::ERR_GENERAL_FAILURE);
    EXPECT_THAT(m_Properties, IsEmpty());
    EXPECT_EQ(TestSupport::tryElsewhere(m_Api.m_DataLock), TLX::Threading::WaitResult::Taken);
}

TEST_P(PropertyRequestsTrace, GetProperties)
{
    const std::vector<std::string> lock = {"8 Before m_DataLock.Wait (sg)", "8 After m_DataLock.Wait (sg)"};
    std::vector<std::string> lines = lock;
    Expect(
        "GetProperties", [&] { GetAll(m_Plugin); }, lines);
    lines.emplace_back("4 GetProperties() Adapter = 2");
    Expect(
        "GetProperties", [&] { GetAll(m_Adapter); }, lines);
    lines.emplace_back("4 GetProperties() PhysicalDrives = 2");
    Expect(
        "GetProperties", [&] { GetAll(m_Drive); }, lines);
    Expect(
        "GetProperties", [&] { GetAll(5); }, lines);
}

TEST_P(PropertyRequestsTrace, GetProperty)
{
    std::vector<std::string> lines = {"8 Before m_DataLock.Wait (sg)", "8 After m_DataLock.Wait (sg)"};
    Expect(
        "GetProperty", [&] { Get(m_Plugin, PI::PROP_NAME); }, lines);
    lines.emplace_back("4 GetProperty() Adapter = 2");
    Expect(
        "GetProperty", [&] { Get(m_Adapter, PI::PROP_NAME); }, lines);
    lines.emplace_back("4 GetProperty() PhysicalDrives = 2");
    Expect(
        "GetProperty", [&] { Get(m_Drive, PI::PROP_NAME); }, lines);
    Expect(
        "GetProperty", [&] { Get(5, PI::PROP_NAME); }, lines);
}

TEST_P(PropertyRequestsTrace, SetProperty)
{
    const std::vector<std::string> lines = {"8 Before m_DataLock.Wait (sg)", "8 After m_DataLock.Wait (sg)"};
    for (const std::uint64_t id : {m_Plugin, m_Adapter, m_Drive, std::uint64_t{5}})
        Expect(
            "SetProperty", [&] { Set(id, PI::PROP_POLL_INTERVAL, 60); }, lines);
}

INSTANTIATE_TEST_SUITE_P(Masks, PropertyRequestsTrace, testing::Values(0U, 4U, 8U, ~0U));
