#include "Journal/Entry.h"

namespace Host::Journal {

std::string_view kindName(Kind kind)
{
    switch (kind) {
    case Kind::DriveAdded:
        return "drive-added";
    case Kind::DriveRemoved:
        return "drive-removed";
    case Kind::DoesNotAnswer:
        return "does-not-answer";
    case Kind::SpareLow:
        return "spare-low";
    case Kind::OverTemperature:
        return "over-temperature";
    case Kind::OverCriticalTemperature:
        return "over-critical-temperature";
    case Kind::ReliabilityDegraded:
        return "reliability-degraded";
    case Kind::ReadOnly:
        return "read-only";
    case Kind::MemoryBackupFailed:
        return "memory-backup-failed";
    case Kind::TemperatureMargin:
        return "temperature-margin";
    case Kind::BelowNew:
        return "below-new";
    case Kind::SpareFell:
        return "spare-fell";
    case Kind::WearGrew:
        return "wear-grew";
    case Kind::OwnWearGrew:
        return "own-wear-grew";
    case Kind::MediaErrorsGrew:
        return "media-errors-grew";
    case Kind::FirmwareChanged:
        return "firmware-changed";
    case Kind::CapacityChanged:
        return "capacity-changed";
    case Kind::BlockSizeChanged:
        return "block-size-changed";
    case Kind::Moved:
        return "moved";
    }
    return {};
}

std::string_view phaseName(Phase phase)
{
    switch (phase) {
    case Phase::Change:
        return "change";
    case Phase::Present:
        return "present";
    case Phase::Began:
        return "began";
    case Phase::Ended:
        return "ended";
    case Phase::Remains:
        return "remains";
    }
    return {};
}

} // namespace Host::Journal
