#pragma once

#include "Facts/Drives.h"

#include <string>
#include <vector>

namespace Host::Cli {

/**
 * What each drive goes by in documents and stores, in the order of `drives`, each key once. It is the serial
 * number; where that is empty or another drive has it, too, "pci-" and the whole PCI address.
 */
std::vector<std::string> driveKeys(const std::vector<Drive>& drives);

/** A serial number that several devices show. */
struct SharedSerial
{
    std::string m_Serial;
    std::vector<std::string> m_Devices;
};

/** Every serial number of more than one device: two controllers of one drive, or clones. */
std::vector<SharedSerial> sharedSerials(const std::vector<Drive>& drives);

} // namespace Host::Cli
