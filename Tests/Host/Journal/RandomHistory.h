#pragma once

#include "Facts/Observation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace HostTest {

using Host::Cli::Observation;
using Host::Cli::ObservedDrive;
using History = std::vector<Observation>;

inline constexpr std::uint64_t INTERVAL = 1000; ///< milliseconds from look to look

/** Looks at a machine again and again. Between two looks anything may happen. */
class RandomHistory
{
public:
    explicit RandomHistory(std::uint32_t seed) : m_Random(seed) {}

    History make(std::size_t looks)
    {
        History history;
        for (std::size_t i = 1; i <= looks; ++i) {
            for (std::uint32_t changes = below(4); changes > 0; --changes)
                change();
            history.push_back({{i * INTERVAL, i * INTERVAL, "boot"}, seen()});
        }
        return history;
    }

private:
    std::uint32_t below(std::uint32_t limit)
    {
        return static_cast<std::uint32_t>(std::uint64_t{m_Random()} % limit);
    }
    bool sometimes() { return below(4) == 0; }

    ObservedDrive newDrive(std::uint32_t number)
    {
        ObservedDrive drive;
        drive.m_Serial = drive.m_Key = "S" + std::to_string(number);
        drive.m_Firmware = "1";
        drive.m_PciAddress = "slot " + std::to_string(below(100));
        drive.m_CapacityMiB = 1000;
        drive.m_BlockSize = 512;
        drive.m_BelowNew = sometimes();
        drive.m_Temperature = 60;
        // A drive either names a limit or warns by itself; a separate test covers both together.
        if (number % 2 == 1)
            drive.m_TemperatureLimit = 70.0F;
        drive.m_CriticalTemperatureLimit = 80.0F;
        drive.m_TemperatureMargin = TLXX::ETemperatureMargin::Safe;
        drive.m_Warnings = sometimes() ? warnings(drive) : 0;
        drive.m_MediaErrors = below(3);
        drive.m_Spare = sometimes() ? 40 : 100;
        drive.m_Wear = sometimes() ? 92 : 0;
        drive.m_OwnWear = sometimes() ? 255 : 0;
        drive.m_PowerCycles = 10 + below(10);
        drive.m_UnsafeShutdowns = below(5);
        drive.m_PowerOnHours = below(100);
        drive.m_DataUnitsWritten = below(1000);
        drive.m_ErrorLogEntries = below(10);
        return drive;
    }

    std::uint8_t warnings(const ObservedDrive& drive)
    {
        const auto bits = static_cast<std::uint8_t>(below(32));
        return drive.m_TemperatureLimit ? bits & 0x1D : bits;
    }

    void change()
    {
        if (m_Drives.empty() || below(12) == 0) {
            const std::uint32_t number = below(8);
            if (m_Drives.erase("S" + std::to_string(number)) == 0)
                m_Drives.emplace("S" + std::to_string(number), newDrive(number));
            return;
        }
        auto chosen = m_Drives.begin();
        std::advance(chosen, below(static_cast<std::uint32_t>(m_Drives.size())));
        change(chosen->second);
    }

    void change(ObservedDrive& drive)
    {
        switch (below(12)) {
        case 0:
            drive.m_Warnings = warnings(drive);
            break;
        case 1:
            drive.m_BelowNew = !*drive.m_BelowNew;
            break;
        case 2:
            drive.m_Temperature = static_cast<float>(60 + below(30));
            break;
        case 3:
            *drive.m_MediaErrors += below(3);
            break;
        case 4:
            drive.m_Spare = static_cast<std::int32_t>(below(101));
            break;
        case 5:
            drive.m_Wear = static_cast<std::int32_t>(below(130));
            drive.m_OwnWear = static_cast<std::int32_t>(below(130));
            break;
        case 6:
            drive.m_Firmware = std::to_string(below(3));
            break;
        case 7:
            drive.m_TemperatureMargin = static_cast<TLXX::ETemperatureMargin>(below(4));
            break;
        case 8:
            drive.m_CapacityMiB = 1000 + below(3);
            drive.m_BlockSize = sometimes() ? 4096 : 512;
            break;
        case 9:
            *(sometimes() ? drive.m_UnsafeShutdowns : drive.m_PowerCycles) += below(3);
            *drive.m_DataUnitsWritten += below(100);
            break;
        case 10:
            *drive.m_ErrorLogEntries += below(3);
            drive.m_PowerOnHours = below(4) == 0 ? 0 : *drive.m_PowerOnHours + below(3);
            break;
        default:
            drive.m_PciAddress = "slot " + std::to_string(below(100));
        }
    }

    /** The drives at one look. Now and then a page could not be read. */
    std::vector<ObservedDrive> seen()
    {
        std::vector<ObservedDrive> drives;
        for (const auto& [serial, drive] : m_Drives) {
            drives.push_back(drive);
            ObservedDrive& view = drives.back();
            if (below(6) == 0) {
                view.m_Warnings.reset();
                view.m_Temperature.reset();
                view.m_MediaErrors.reset();
                view.m_Spare.reset();
                view.m_Wear.reset();
                view.m_OwnWear.reset();
                view.m_PowerCycles.reset();
                view.m_UnsafeShutdowns.reset();
                view.m_PowerOnHours.reset();
                view.m_DataUnitsWritten.reset();
                view.m_ErrorLogEntries.reset();
            }
            if (below(6) == 0) {
                view.m_CapacityMiB.reset();
                view.m_BlockSize.reset();
            }
            if (below(6) == 0) {
                view.m_BelowNew.reset();
                view.m_TemperatureMargin.reset();
            }
        }
        std::shuffle(drives.begin(), drives.end(), m_Random);
        return drives;
    }

    std::mt19937 m_Random;
    std::map<std::string, ObservedDrive> m_Drives;
};

} // namespace HostTest
