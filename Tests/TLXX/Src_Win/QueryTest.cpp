#include "Support_Win/ScriptedDevices.h"

#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <optional>
#include <ostream>

#include <windows.h>

namespace {

using TestSupport::CControlCall;
using TestSupport::CScriptedDevices;

constexpr std::uint32_t SHORT_TRANSFER = 0x20000;
constexpr std::uint32_t BAD_ANSWER = 0x20001;

constexpr std::uint32_t DESCRIPTOR = 48;
/** Offsets are counted from here. */
constexpr std::uint32_t PROTOCOL_DATA = 8;

using Bytes = std::vector<std::uint8_t>;

/** Bytes that differ from one position to the next. */
Bytes pattern(std::size_t size)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256 + 1);
    return bytes;
}

void putWord(Bytes& bytes, std::size_t offset, std::uint32_t word)
{
    std::memcpy(bytes.data() + offset, &word, sizeof word);
}

constexpr DWORD GET_ADDRESS = 0x41018;

/** The question that the system must get. All other fields must be zero. */
Bytes question(std::uint32_t property, std::uint32_t dataType, std::uint32_t request, std::uint32_t length,
               std::uint32_t subValue = 0)
{
    Bytes bytes(DESCRIPTOR + length);
    putWord(bytes, 0, property);
    putWord(bytes, 8, 3); // NVMe
    putWord(bytes, 12, dataType);
    putWord(bytes, 16, request);
    putWord(bytes, 20, subValue);
    putWord(bytes, 24, 40);
    putWord(bytes, 28, length);
    return bytes;
}

/** The system's answer; each member may be wrong. */
struct CAnswer
{
    std::uint32_t m_Size = DESCRIPTOR;
    std::uint32_t m_Offset = 40;
    std::uint32_t m_Length = 0;
    std::uint32_t m_Returned = 0;
    Bytes m_Data;
};

/**
 * One of the queries: the parts of the control request that it must send, and a call of it that fills a
 * block.
 */
struct CQuery
{
    const char* m_Name;
    TLXX::EQuery m_Kind;
    std::uint32_t m_Property;
    std::uint32_t m_DataType;
    std::uint32_t m_Request;
    std::uint32_t m_Length;
    std::function<std::uint32_t(const std::string&, Bytes&)> m_Run;
};

std::ostream& operator<<(std::ostream& stream, const CQuery& query)
{
    return stream << query.m_Name;
}

/** The block is filled before, to show what a query leaves in it. */
template<typename Block, typename Function>
auto run(Function query)
{
    return [query](const std::string& path, Bytes& bytes) {
        Block block;
        std::memset(&block, 0xEE, sizeof block);
        const std::uint32_t status = query(path, block);
        bytes.resize(sizeof block);
        std::memcpy(bytes.data(), &block, sizeof block);
        return status;
    };
}

auto runVendorLog(std::uint8_t identifier)
{
    return run<TLXX::VendorLogPage>([identifier](const std::string& path, TLXX::VendorLogPage& page) {
        return TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage(path, identifier, page);
    });
}

class Query : public testing::TestWithParam<CQuery>
{
protected:
    Query()
    {
        TestSupport::CScriptedDisk disk;
        disk.m_Path = m_Path;
        m_Disk = m_Devices.AddController(CScriptedDevices::ROOT, {disk}) + 1;
        m_Devices.m_Control = [this](const CControlCall& call) { return Control(call); };
    }

    DWORD Control(const CControlCall& call)
    {
        const CQuery& query = GetParam();
        EXPECT_EQ(call.m_Path, m_Path);
        if (call.m_Code == GET_ADDRESS)
            return ERROR_NOT_SUPPORTED; // the query then cannot name the namespace
        EXPECT_EQ(call.m_Code, 0x2D1400U);
        EXPECT_EQ(call.m_Input,
                  question(query.m_Property, query.m_DataType, query.m_Request, query.m_Length));
        EXPECT_EQ(call.m_OutputSize, DESCRIPTOR + query.m_Length);
        if (m_Error != 0)
            return m_Error;
        Bytes answer = call.m_Input;
        putWord(answer, 0, DESCRIPTOR);
        putWord(answer, 4, m_Answer.m_Size);
        putWord(answer, 24, m_Answer.m_Offset);
        putWord(answer, 28, m_Answer.m_Length);
        std::copy(m_Answer.m_Data.begin(), m_Answer.m_Data.end(), answer.begin() + DESCRIPTOR);
        std::copy(answer.begin(), answer.end(), call.m_Output);
        *call.m_Returned = m_Answer.m_Returned;
        return 0;
    }

    /** Runs the query against an honest answer after `change`. */
    std::uint32_t Ask(const std::function<void(CAnswer&)>& change = [](CAnswer&) {})
    {
        m_Answer = CAnswer();
        m_Answer.m_Length = GetParam().m_Length;
        m_Answer.m_Returned = DESCRIPTOR + GetParam().m_Length;
        m_Answer.m_Data = pattern(GetParam().m_Length);
        change(m_Answer);
        const std::uint32_t status = GetParam().m_Run(m_Path, m_Bytes);
        EXPECT_EQ(TLXX::lastStatus(m_Path, GetParam().m_Kind), status);
        EXPECT_EQ(m_Devices.OpenHandles(), 0U);
        EXPECT_EQ(m_Bytes, status == 0 ? m_Answer.m_Data : m_Untouched);
        return status;
    }

    const std::string m_Path = R"(\\.\PhysicalDrive3)";
    CScriptedDevices m_Devices{L"TLXX.dll"};
    CScriptedDevices::Node m_Disk;
    CAnswer m_Answer;
    DWORD m_Error = 0;
    Bytes m_Bytes;
    const Bytes m_Untouched = Bytes(GetParam().m_Length, 0xEE);
};

TEST_P(Query, AsksForTheBlockAndHandsItBack)
{
    EXPECT_EQ(Ask(), 0U);
    std::vector<std::string> calls = {"Open " + m_Path, "Control 2954240", "Close"};
    if (GetParam().m_Kind == TLXX::EQuery::IdentifyNamespace)
        calls.insert(calls.begin() + 1, "Control 266264");
    EXPECT_EQ(m_Devices.m_Calls, calls);
}

TEST_P(Query, KeepsTheBlockWhenTheSystemRefuses)
{
    for (const DWORD error :
         {ERROR_ACCESS_DENIED, ERROR_INVALID_FUNCTION, ERROR_IO_DEVICE, ERROR_NOT_SUPPORTED}) {
        m_Error = error;
        EXPECT_EQ(Ask(), error);
    }
}

TEST_P(Query, AsksNothingOfADeviceThatDoesNotOpen)
{
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_FILE_NOT_FOUND, ERROR_SHARING_VIOLATION}) {
        TestSupport::CScriptedDisk disk;
        disk.m_Path = m_Path;
        disk.m_OpenError = error;
        m_Devices.SetDisks(m_Disk, {disk});
        EXPECT_EQ(Ask(), error);
        EXPECT_EQ(TLXX::isPermissionStatus(error), error == ERROR_ACCESS_DENIED);
    }
}

TEST_P(Query, BelievesNoOffsetOutsideOfTheAnswer)
{
    const std::uint32_t length = GetParam().m_Length;
    const std::uint32_t room = DESCRIPTOR - PROTOCOL_DATA + length;
    for (const std::uint32_t offset :
         {0U, 8U, 39U, room + 1, room + 4096, 0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Ask([&](CAnswer& answer) { answer.m_Offset = offset; }), BAD_ANSWER) << offset;
    }
    for (const std::uint32_t offset : {41U, room - 1, room})
        EXPECT_EQ(Ask([&](CAnswer& answer) { answer.m_Offset = offset; }), SHORT_TRANSFER) << offset;
}

TEST_P(Query, TakesNoBlockThatIsShorterThanItSays)
{
    const std::uint32_t length = GetParam().m_Length;
    for (const std::uint32_t given : {0U, 1U, length / 2, length - 1})
        EXPECT_EQ(Ask([&](CAnswer& answer) { answer.m_Length = given; }), SHORT_TRANSFER) << given;
    for (const std::uint32_t returned :
         {0U, 8U, DESCRIPTOR - 1, DESCRIPTOR, DESCRIPTOR + 1, DESCRIPTOR + length - 1}) {
        EXPECT_EQ(Ask([&](CAnswer& answer) { answer.m_Returned = returned; }), SHORT_TRANSFER) << returned;
    }
}

TEST_P(Query, TakesNoMoreThanItAskedFor)
{
    // An answer cannot have more bytes than the buffer.
    EXPECT_EQ(Ask([](CAnswer& answer) { answer.m_Length = 0xFFFFFFFF; }), 0U);
    EXPECT_EQ(Ask([](CAnswer& answer) { answer.m_Returned = 0xFFFFFFFF; }), 0U);
    EXPECT_EQ(Ask([](CAnswer& answer) {
                  answer.m_Returned = 0xFFFFFFFF;
                  answer.m_Offset += 8;
              }),
              SHORT_TRANSFER);
}

TEST_P(Query, TakesNoDescriptorThatIsSmallerThanOne)
{
    for (const std::uint32_t size : {0U, 8U, 47U})
        EXPECT_EQ(Ask([&](CAnswer& answer) { answer.m_Size = size; }), SHORT_TRANSFER);
    EXPECT_EQ(Ask([&](CAnswer& answer) { answer.m_Size = DESCRIPTOR + GetParam().m_Length; }), 0U);
}

TEST_P(Query, LeavesNoHandleWhicheverCallFails)
{
    const long last = GetParam().m_Kind == TLXX::EQuery::IdentifyNamespace ? 2 : 1;
    for (const long call : {0L, last}) {
        m_Devices.m_CallCount = 0;
        m_Devices.m_FailAt = call;
        EXPECT_NE(Ask(), 0U);
    }
}

/** A disk at a logical unit. Its driver may refuse sub-values. */
class NamespaceQuery : public testing::Test
{
protected:
    NamespaceQuery()
    {
        TestSupport::CScriptedDisk disk;
        disk.m_Path = PATH;
        m_Devices.AddController(CScriptedDevices::ROOT, {disk});
        m_Devices.m_Control = [this](const CControlCall& call) { return Control(call); };
    }

    DWORD Control(const CControlCall& call)
    {
        if (call.m_Code == GET_ADDRESS) {
            EXPECT_EQ(call.m_OutputSize, 8U);
            *call.m_Returned = m_AddressLength;
            if (!m_Unit)
                return ERROR_INVALID_FUNCTION;
            call.m_Output[7] = *m_Unit;
            return 0;
        }
        std::uint32_t subValue = 0;
        std::memcpy(&subValue, call.m_Input.data() + 20, sizeof subValue);
        EXPECT_EQ(call.m_Input, question(50, 1, 0, 4096, subValue));
        m_SubValues.push_back(subValue);
        if (m_Accepted && subValue != *m_Accepted)
            return ERROR_INVALID_PARAMETER;
        Bytes answer = call.m_Input;
        putWord(answer, 0, DESCRIPTOR);
        putWord(answer, 4, DESCRIPTOR);
        const Bytes data = pattern(4096);
        std::copy(data.begin(), data.end(), answer.begin() + DESCRIPTOR);
        std::copy(answer.begin(), answer.end(), call.m_Output);
        *call.m_Returned = static_cast<DWORD>(answer.size());
        return 0;
    }

    std::vector<std::uint32_t> SubValues(std::uint32_t expected = 0)
    {
        m_SubValues.clear();
        TLXX::NVME_IDENTIFY_NAMESPACE block{};
        EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyNamespace(PATH, block), expected);
        return m_SubValues;
    }

    using Values = std::vector<std::uint32_t>;

    static constexpr char PATH[] = R"(\\.\PhysicalDrive3)";
    CScriptedDevices m_Devices{L"TLXX.dll"};
    std::optional<std::uint8_t> m_Unit = std::uint8_t{0};
    DWORD m_AddressLength = 8;
    std::optional<std::uint32_t> m_Accepted; ///< none: any
    Values m_SubValues;
};

TEST_F(NamespaceQuery, NamesTheNamespaceByItsLogicalUnit)
{
    EXPECT_EQ(SubValues(), (Values{1}));
    m_Unit = std::uint8_t{4};
    EXPECT_EQ(SubValues(), (Values{5}));
    m_Accepted = 5;
    EXPECT_EQ(SubValues(), (Values{5}));
}

TEST_F(NamespaceQuery, IsAskedOnceMoreWithoutANameThatWasRefused)
{
    m_Accepted = 0;
    EXPECT_EQ(SubValues(), (Values{1, 0}));
    m_Accepted = 9;
    EXPECT_EQ(SubValues(ERROR_INVALID_PARAMETER), (Values{1, 0}));
}

TEST_F(NamespaceQuery, NamesNoneWhereTheLogicalUnitIsNotKnown)
{
    m_AddressLength = 7;
    EXPECT_EQ(SubValues(), (Values{0}));
    m_Unit.reset();
    EXPECT_EQ(SubValues(), (Values{0}));
}

constexpr std::uint32_t OF_ADAPTER = 49;
constexpr std::uint32_t OF_DEVICE = 50;
constexpr std::uint32_t IDENTIFY = 1;
constexpr std::uint32_t LOG_PAGE = 2;

INSTANTIATE_TEST_SUITE_P(
    Each, Query,
    testing::Values(
        CQuery{"IdentifyController", TLXX::EQuery::IdentifyController, OF_ADAPTER, IDENTIFY, 1, 4096,
               run<TLXX::NVME_IDENTIFY_CONTROLLER>(TLXX::NVMeStorageQueryPropertyIdentifyController)},
        CQuery{"IdentifyNamespace", TLXX::EQuery::IdentifyNamespace, OF_DEVICE, IDENTIFY, 0, 4096,
               run<TLXX::NVME_IDENTIFY_NAMESPACE>(TLXX::NVMeStorageQueryPropertyIdentifyNamespace)},
        CQuery{"HealthLog", TLXX::EQuery::SmartHealthLog, OF_ADAPTER, LOG_PAGE, 2, 512,
               run<TLXX::NVME_SMART_HEALTH_INFORMATION_LOG>(
                   TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo)},
        CQuery{"Log0xC5", TLXX::EQuery::VendorLog, OF_ADAPTER, LOG_PAGE, 0xC5, 512, runVendorLog(0xC5)},
        CQuery{"Log0xCA", TLXX::EQuery::VendorLog, OF_ADAPTER, LOG_PAGE, 0xCA, 512, runVendorLog(0xCA)},
        CQuery{"Log0xDD", TLXX::EQuery::VendorLog, OF_ADAPTER, LOG_PAGE, 0xDD, 512, runVendorLog(0xDD)}),
    [](const auto& query) { return std::string(query.param.m_Name); });

} // namespace
