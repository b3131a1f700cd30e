#pragma once

#include "Commands/DoctorCommand.h"
#include "Support/SystemStatus.h"

#include <gmock/gmock.h>

#include <string>

/** Helpers for the tests of doctor's checks. */
namespace HostTest {

/** A controller without any fault, named "nvme<number>". */
inline TLXX::CControllerState stateOf(int number)
{
    TLXX::CControllerState state;
    state.m_Name = "nvme" + std::to_string(number);
    state.m_DeviceName = "/dev/" + state.m_Name + "n1";
    state.m_Driver = "nvme";
    state.m_Transport = "pcie";
    state.m_State = "live";
    state.m_Location = TLXX::CPciLocation{0, 16 * (number + 1), 0x1F, 1};
    state.m_AccessPath = "/dev/" + state.m_Name;
    return state;
}

/** Matches a check with this outcome whose message contains `part`. */
inline auto finding(Host::Cli::Finding kind, const std::string& part)
{
    using testing::Field;
    return testing::AllOf(Field(&Host::Cli::Check::m_Finding, kind),
                          Field(&Host::Cli::Check::m_Message, testing::HasSubstr(part)));
}

} // namespace HostTest
