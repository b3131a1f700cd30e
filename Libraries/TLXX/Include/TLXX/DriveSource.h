#pragma once

#include <TLXX/Export.h>
#include <TLXX/NvmeQuery.h>

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TLXX {

/** Which drive is meant. An answer is only ever that of this instance, whatever is at the path by then. */
struct CDriveAddress
{
    std::string m_Path;     ///< path of the disk from the enumeration
    std::string m_Instance; ///< identifies the drive; see `IDeviceBackend::Instance`

    friend bool operator==(const CDriveAddress&, const CDriveAddress&) = default;
};

/** One of the queries of `NvmeQuery.h`. */
struct CDriveCommand
{
    EQuery m_Query = EQuery::IdentifyController;
    std::uint8_t m_LogIdentifier = 0; ///< of a vendor log; 0 for the other queries

    // clang-tidy takes the 0 that such a comparison contains for a null pointer.
    friend auto operator<=>(const CDriveCommand&,
                            const CDriveCommand&) = default; // NOLINT(modernize-use-nullptr)
};

/** What became of a command. */
struct CDriveAnswer
{
    CDriveAddress m_Drive;
    CDriveCommand m_Command;
    std::uint32_t m_Status = 0;        ///< as the queries of `NvmeQuery.h` return it
    std::vector<std::uint8_t> m_Block; ///< the whole block when the status is 0, else empty
};

/**
 * Sends commands to drives and brings the answers in the order in which they come, so that one silent drive
 * delays no other. For use by one thread, except for `Wake`.
 */
class TLXX_EXPORT IDriveSource
{
public:
    IDriveSource() = default;
    /** Does not wait for commands that have not come back. */
    virtual ~IDriveSource();
    IDriveSource(const IDriveSource&) = delete;
    IDriveSource& operator=(const IDriveSource&) = delete;

    /**
     * Sends `commands` to `drive`, one after another in this order. Returns at once. Each command gets
     * exactly one answer, however late; a drive that never answers gives none. A command to a drive that is
     * no longer at its path is answered with `STATUS_NO_DEVICE`. The caller sends nothing more to a drive
     * that owes an answer.
     */
    virtual void Submit(const CDriveAddress& drive, const std::vector<CDriveCommand>& commands) = 0;

    /**
     * The next answer; none when there is none before `until`, in milliseconds of `TLX::Misc::monotonic`, or
     * when `Wake` was called.
     */
    virtual std::optional<CDriveAnswer> Wait(std::uint64_t until) = 0;

    /** Ends the present `Wait` early, or else the next one that would have to wait. Safe from any thread. */
    virtual void Wake() = 0;
};

} // namespace TLXX
