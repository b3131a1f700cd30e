#pragma once

#include <TLX/Linux/Descriptor.h>

#include <filesystem>

#include <sys/types.h>

namespace Host {

/** The socket of the reader that the system's service manager starts. */
std::filesystem::path usualReader();

/** Connects to the reader that listens at `socket`. Throws `std::system_error`. */
TLX::Linux::CDescriptor connectReader(const std::filesystem::path& socket);

/**
 * Starts readers that serve this process alone. Each ends when its connection is closed. One that waits in
 * the kernel for a drive ends after that wait, and nobody waits for it. For use by one thread.
 */
class PrivateReader
{
public:
    /** `program` is the reader's file. */
    explicit PrivateReader(std::filesystem::path program) : m_Program(std::move(program)) {}

    /** Starts another one and returns the connection to it. Throws `std::system_error`. */
    TLX::Linux::CDescriptor start();

private:
    void clearAway();

    const std::filesystem::path m_Program;
    pid_t m_Former = 0; ///< the last one that was started; 0: none, or its end has been seen
};

} // namespace Host
