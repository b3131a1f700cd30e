#pragma once

#include "Commands/CommandLine.h"
#include "Web/Client.h"

#include <filesystem>
#include <optional>

namespace Host::Cli {

/** A service that listens, and the socket by which it was found. */
struct RunningService
{
    std::filesystem::path m_Socket;
    Web::Client m_Client;
};

/**
 * The service that keeps the data folder of these options. None when no service listens, and for simulated
 * drives without a folder.
 */
std::optional<RunningService> runningService(const Options& options);

} // namespace Host::Cli
