#include <TLXX/NvmeStructures.h>

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <ostream>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;

/** A structure with bytes set by position, as a drive would send it. */
template<typename Structure>
class CImage
{
public:
    CImage& Text(std::size_t offset, std::string_view text)
    {
        std::memcpy(m_Bytes.data() + offset, text.data(), text.size());
        return *this;
    }

    CImage& Byte(std::size_t offset, std::uint8_t value)
    {
        m_Bytes.at(offset) = value;
        return *this;
    }

    CImage& Bytes(std::size_t offset, std::uint64_t value, std::size_t size)
    {
        for (std::size_t i = 0; i < size; ++i)
            m_Bytes.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
        return *this;
    }

    CImage& Word64(std::size_t offset, std::uint64_t value) { return Bytes(offset, value, sizeof value); }

    Structure Get() const
    {
        Structure structure{};
        std::memcpy(&structure, m_Bytes.data(), sizeof structure);
        return structure;
    }

private:
    std::vector<std::uint8_t> m_Bytes = std::vector<std::uint8_t>(sizeof(Structure));
};

using CControllerImage = CImage<TLXX::NVME_IDENTIFY_CONTROLLER>;
using CNamespaceImage = CImage<TLXX::NVME_IDENTIFY_NAMESPACE>;
using CHealthImage = CImage<TLXX::NVME_SMART_HEALTH_INFORMATION_LOG>;

TEST(IdentifyControllerTest, ReadsTheFieldsAtTheirOffsets)
{
    const auto controller = CControllerImage()
                                .Byte(0, 0x86)
                                .Byte(1, 0x80)
                                .Text(4, "SERIAL-0123456789   ")
                                .Text(24, "MODEL NUMBER OF FORTY CHARACTERS        ")
                                .Text(64, "FW 1.2.3")
                                .Text(3100, "TAG12345")
                                .Get();
    EXPECT_EQ(controller.VID, 0x8086);
    EXPECT_EQ(controller.sSerialNumber(), "SERIAL-0123456789");
    EXPECT_EQ(controller.sModelNumber(), "MODEL NUMBER OF FORTY CHARACTERS");
    EXPECT_EQ(controller.sFirmwareRevision(), "FW 1.2.3");
    EXPECT_EQ(controller.sVendorTag(), "TAG12345");
}

TEST(IdentifyControllerTest, ReadsVersionLimitsAndCapacitiesAtTheirOffsets)
{
    const auto controller = CControllerImage()
                                .Bytes(80, 0x00010402, 4)
                                .Bytes(266, 0x0157, 2)
                                .Bytes(268, 0x0166, 2)
                                .Bytes(280, 0x1122334455667788, 8)
                                .Bytes(288, 3, 8)
                                .Bytes(296, 0x99AABBCCDDEEFF00, 8)
                                .Bytes(304, 4, 8)
                                .Bytes(516, 0x12345678, 4)
                                .Get();
    EXPECT_EQ(controller.VER, 0x00010402U);
    EXPECT_EQ(controller.WCTEMP, 0x0157U);
    EXPECT_EQ(controller.CCTEMP, 0x0166U);
    EXPECT_THAT(controller.TNVMCAP, ElementsAre(0x1122334455667788U, 3U));
    EXPECT_THAT(controller.UNVMCAP, ElementsAre(0x99AABBCCDDEEFF00U, 4U));
    EXPECT_EQ(controller.NN, 0x12345678U);
}

TEST(IdentifyControllerTest, NoFieldReachesIntoItsNeighbour)
{
    const auto controller = CControllerImage()
                                .Text(4, std::string(20, 'S'))
                                .Text(24, std::string(40, 'M'))
                                .Text(64, std::string(8, 'F'))
                                .Text(72, "neighbour")
                                .Text(3099, "[TTTTTTTT]")
                                .Get();
    EXPECT_EQ(controller.sSerialNumber(), std::string(20, 'S'));
    EXPECT_EQ(controller.sModelNumber(), std::string(40, 'M'));
    EXPECT_EQ(controller.sFirmwareRevision(), std::string(8, 'F'));
    EXPECT_EQ(controller.sVendorTag(), std::string(8, 'T'));
}

TEST(IdentifyControllerTest, HostileTextsComeOutSafe)
{
    const auto controller = CControllerImage()
                                .Text(4, "\x1B]0;owned\x07")
                                .Text(24, "  A\nB\xFF")
                                .Text(64, "        ")
                                .Text(3100, "AB\0CDEFG"sv)
                                .Get();
    EXPECT_EQ(controller.sSerialNumber(), "?]0;owned?");
    EXPECT_EQ(controller.sModelNumber(), "A?B?");
    EXPECT_EQ(controller.sFirmwareRevision(), "");
    EXPECT_EQ(controller.sVendorTag(), "AB");
}

struct CFormatCase
{
    const char* m_What;
    std::uint8_t m_Formats; ///< counted from 0
    std::uint8_t m_Index;   ///< FLBAS
    std::size_t m_Slot;     ///< the position of the format in the list
    std::uint8_t m_Shift;
    std::uint64_t m_Expected;
};

std::ostream& operator<<(std::ostream& stream, const CFormatCase& value)
{
    return stream << value.m_What;
}

class LbaFormatTest : public testing::TestWithParam<CFormatCase>
{};

TEST_P(LbaFormatTest, GivesTheBlockSize)
{
    const CFormatCase& format = GetParam();
    const auto name_space = CNamespaceImage()
                                .Byte(25, format.m_Formats)
                                .Byte(26, format.m_Index)
                                .Byte(128 + 4 * format.m_Slot + 2, format.m_Shift)
                                .Get();
    EXPECT_EQ(name_space.LBASize(), format.m_Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, LbaFormatTest,
    testing::Values(CFormatCase{"512 bytes", 0, 0, 0, 9, 512}, CFormatCase{"4096 bytes", 3, 2, 2, 12, 4096},
                    CFormatCase{"bits 4 and 7 mean something else", 3, 0x92, 2, 12, 4096},
                    CFormatCase{"last of sixteen", 15, 15, 15, 9, 512},
                    CFormatCase{"reserved high bits of a short index", 15, 0x61, 1, 9, 512},
                    CFormatCase{"high bits of a long index", 16, 0x20, 16, 12, 4096},
                    CFormatCase{"index 48 of 64", 63, 0x60, 48, 12, 4096},
                    CFormatCase{"last of 64", 63, 0x6F, 63, 9, 512},
                    CFormatCase{"an absurd count", 255, 0x6F, 63, 9, 512},
                    CFormatCase{"index out of range", 3, 4, 4, 9, 0},
                    CFormatCase{"long index out of range", 16, 0x21, 17, 9, 0},
                    CFormatCase{"unset", 0, 0, 0, 0, 0}, CFormatCase{"too small", 0, 0, 0, 8, 0},
                    CFormatCase{"largest", 0, 0, 0, 31, 0x80000000}, CFormatCase{"absurd", 0, 0, 0, 32, 0},
                    CFormatCase{"wider than 64 bits", 0, 0, 0, 64, 0},
                    CFormatCase{"all ones", 0, 0, 0, 255, 0}));

std::uint64_t capacity(std::uint64_t blocks, std::uint8_t shift)
{
    return TLXX::NVME_IDENTIFY_CONTROLLER{}.Capacity(
        CNamespaceImage().Word64(0, blocks).Byte(130, shift).Get());
}

TEST(CapacityTest, IsBlocksTimesBlockSize)
{
    EXPECT_EQ(capacity(1'953'525'168, 9), 1'000'204'886'016);
    EXPECT_EQ(capacity(244'190'646, 12), 1'000'204'886'016);
}

TEST(CapacityTest, NothingWithoutBlocksOrBlockSize)
{
    EXPECT_EQ(capacity(0, 9), 0);
    EXPECT_EQ(capacity(1000, 0), 0);
    EXPECT_EQ(capacity(std::numeric_limits<std::uint64_t>::max(), 0), 0);
}

TEST(CapacityTest, SaturatesAtAllOnes)
{
    constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(capacity((std::uint64_t{1} << 55U) - 1, 9), allOnes - 511);
    EXPECT_EQ(capacity(std::uint64_t{1} << 55U, 9), allOnes);
    EXPECT_EQ(capacity((std::uint64_t{1} << 55U) + 1, 9), allOnes);
    EXPECT_EQ(capacity(allOnes, 31), allOnes);
}

TEST(CapacityTest, CountsTheSizeAndNotTheOtherCounters)
{
    const auto name_space = CNamespaceImage().Word64(0, 10).Word64(8, 20).Word64(16, 30).Byte(130, 9).Get();
    EXPECT_EQ(TLXX::NVME_IDENTIFY_CONTROLLER{}.Capacity(name_space), 5120);
}

TEST(HealthLogTest, ReadsTheFieldsAtTheirOffsets)
{
    const auto log = CHealthImage()
                         .Byte(0, 0x15)
                         .Byte(1, 0x34)
                         .Byte(2, 0x01)
                         .Byte(3, 97)
                         .Byte(4, 10)
                         .Word64(32, 0x1122334455667788)
                         .Word64(40, 1)
                         .Word64(48, 0x99AABBCCDDEEFF00)
                         .Word64(56, 2)
                         .Get();
    EXPECT_EQ(log.CriticalWarning(), 0x15);
    EXPECT_EQ(log.CompositeTemperature(), 308);
    EXPECT_EQ(log.AvailableSpare, 97);
    EXPECT_EQ(log.AvailableSpareThreshold, 10);
    EXPECT_EQ(log.DataUnitsRead[0], 0x1122334455667788);
    EXPECT_EQ(log.DataUnitsRead[1], 1);
    EXPECT_EQ(log.DataUnitsWritten[0], 0x99AABBCCDDEEFF00);
    EXPECT_EQ(log.DataUnitsWritten[1], 2);
}

TEST(HealthLogTest, CountersAreThoseAtBytes128And160)
{
    const auto log =
        CHealthImage().Word64(112, 1112).Word64(128, 1128).Word64(144, 1144).Word64(160, 1160).Get();
    EXPECT_EQ(log.Counter128[0], 1128);
    EXPECT_EQ(log.Counter160[0], 1160);
}

TEST(HealthLogTest, ReadsEachFieldOfUseAndOfTemperatureAtItsOffset)
{
    CHealthImage image;
    for (std::size_t offset = 64; offset < 192; offset += 16)
        image.Word64(offset, offset).Word64(offset + 8, 1000 + offset);
    image.Byte(5, 205).Bytes(192, 0xA0192, 4).Bytes(196, 0xA0196, 4);
    for (std::size_t sensor = 0; sensor < 8; ++sensor)
        image.Bytes(200 + 2 * sensor, 300 + sensor, 2);
    for (std::size_t offset = 216; offset < 232; offset += 4)
        image.Bytes(offset, 0xB0000 + offset, 4);
    const auto log = image.Get();
    EXPECT_EQ(log.PercentageUsed, 205);
    EXPECT_THAT(log.HostReadCommands, ElementsAre(64U, 1064U));
    EXPECT_THAT(log.HostWriteCommands, ElementsAre(80U, 1080U));
    EXPECT_THAT(log.ControllerBusyTime, ElementsAre(96U, 1096U));
    EXPECT_THAT(log.PowerCycles, ElementsAre(112U, 1112U));
    EXPECT_THAT(log.UnsafeShutdowns, ElementsAre(144U, 1144U));
    EXPECT_THAT(log.ErrorLogEntries, ElementsAre(176U, 1176U));
    EXPECT_EQ(log.WarningTemperatureTime, 0xA0192U);
    EXPECT_EQ(log.CriticalTemperatureTime, 0xA0196U);
    EXPECT_THAT(log.TemperatureSensor, ElementsAre(300, 301, 302, 303, 304, 305, 306, 307));
    EXPECT_THAT(log.ThermalTransitions, ElementsAre(0xB0000U + 216, 0xB0000U + 220));
    EXPECT_THAT(log.ThermalTime, ElementsAre(0xB0000U + 224, 0xB0000U + 228));
}

} // namespace
