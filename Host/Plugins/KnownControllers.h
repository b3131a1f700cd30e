#pragma once

#include "Drives/DriveAnswer.h"

#include <TLXX/Diagnosis.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/**
 * What the system says of the controllers. On Linux it takes fifteen files to know that of one controller, so
 * they are not read again in each round of a service. One thread at a time may use it.
 */
class KnownControllers
{
public:
    /** How old the list may be while the drives give no reason to read it, in milliseconds. */
    static constexpr std::uint64_t LONGEST = 300'000;

    /** Reads the list. It is empty when the system cannot tell now; `follow` then tries again. */
    void read();

    /**
     * Reads the list if drives came, went, failed or recovered since the last call, or if it is older than
     * `LONGEST`.
     */
    void follow(const std::vector<DriveAnswer>& answers);

    const std::vector<TLXX::CControllerState>& states() const { return m_States; }

private:
    /** What a change of a controller shows in. */
    struct Sign
    {
        std::string m_Instance;
        std::string m_DeviceName;
        std::uint32_t m_Status = 0;

        friend bool operator==(const Sign&, const Sign&) = default;
    };

    std::vector<TLXX::CControllerState> m_States;
    std::vector<Sign> m_Signs;           ///< at the last call of `follow`
    std::optional<std::uint64_t> m_Read; ///< monotonic milliseconds; none: the list is not known
};

} // namespace Host
