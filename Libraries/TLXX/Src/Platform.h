#pragma once

#include <TLXX/DeviceBackend.h>
#include <TLXX/Diagnosis.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The functions that each operating system implements in a folder of its own. The public functions call these
// when no back-end is set, and give them the same contract. Queries are in `Disk.h`, of which every system
// has its own.
namespace TLXX::Platform {

/** Identifies the drive at `path`; empty when no drive is known there. */
std::string instance(const std::string& path);

/** The location of the `number`-th controller of the last enumeration, counted from 1. */
std::optional<CPciLocation> location(std::uint32_t number);

std::string moduleVersion(const std::string& module);

std::vector<CControllerState> controllerStates();

/** As `IDeviceBackend::Subscribe`. Null when the system announces nothing to this process. */
std::unique_ptr<IAnnouncements> subscribe(std::function<void()> announce);

} // namespace TLXX::Platform
