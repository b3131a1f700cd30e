#pragma once

#include "Base/Output.h"

#include <TLX/Event.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// What differs from system to system; each has a folder of its own behind this header.
namespace Host::Platform {

/** The words of the command line in UTF-8, the program's name first, from the arguments of `main`. */
std::vector<std::string> commandLine(int argc, char** argv);

/** The folder of the running program. */
std::filesystem::path programFolder();

/** Where settings are kept when the user names no folder. */
std::filesystem::path defaultDataFolder();

/** What a process may want of a file or folder. */
enum class Access
{
    Read,
    Write,
    AddFile,   ///< to this folder
    AddFolder, ///< to this folder
};

/** Why the system refuses this process that access to what is at `path`; no error when it grants it. */
std::error_code accessError(const std::filesystem::path& path, Access access);

/** A loaded dynamic library; unloaded on destruction. */
class DynamicLibrary
{
public:
    /** Throws `std::runtime_error` with the system's reason. */
    explicit DynamicLibrary(const std::filesystem::path& file);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /** The address of an export; null when there is none of that name. */
    void* symbol(const char* name) const;

private:
    void* m_Handle;
};

/**
 * A file that one process holds at a time, at the longest until it ends, and in which others read its process
 * identifier. A file that is deleted meanwhile lets nobody else in.
 */
class LockFile
{
public:
    explicit LockFile(const std::filesystem::path& file);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /**
     * Makes the file when it is missing. Returns whether this process holds it from now on: no other one
     * does. Throws `std::system_error` when there is no file to be held, such as where a folder has its name.
     */
    bool take();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/** Where the rest of the process writes that believes to write to standard output. */
enum class Elsewhere
{
    StandardError,
    Nowhere,
};

/** Nobody reads an output of the program any more. */
class ReaderGone : public std::runtime_error
{
public:
    ReaderGone() : std::runtime_error("nobody reads the output any more") {}
};

/** An output that the process was started with. */
enum class Standard
{
    Output,
    Error,
};

/**
 * A standard output, kept under a number of its own: what is done with the process's own number later changes
 * nothing here. From construction on, a write to an output that nobody reads any more fails; it never ends
 * the process.
 */
class StandardOutput : public Output
{
public:
    explicit StandardOutput(Standard which);
    ~StandardOutput() override;
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /** Throws `ReaderGone`, and `std::system_error` when not everything could be written for another reason.
     */
    void write(std::string_view text) override;

    bool isTerminal() const override;
    unsigned terminalWidth() const override;
    bool showsColours() const override;

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/** From now on whatever prints to the standard output, such as a plug-in, prints elsewhere. A
 * `StandardOutput` that was made before still writes to the real one. */
void divertStandardOutput(Elsewhere elsewhere);

/**
 * While it lives, it takes what asks the program to end: an interrupt, a closed terminal, a shutdown. That
 * ends the program at once until `defer` is called. From then on the first time fires `asked()`, and the
 * second time ends the program. One at a time, made while the process has a single thread.
 */
class TerminationRequest
{
public:
    /** Throws `std::system_error`. */
    TerminationRequest();
    ~TerminationRequest();
    TerminationRequest(const TerminationRequest&) = delete;
    TerminationRequest& operator=(const TerminationRequest&) = delete;

    /** From now on the program ends in its own time. */
    void defer();

    /** A manual-reset event. */
    TLX::Threading::CEvent& asked();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/**
 * While it lives, a crash of the process prints a last text and ends the process with an exit code of its
 * own, because whoever reads the results must not take the crash's code for one. One at a time.
 */
class CrashReport
{
public:
    CrashReport(Output& output, std::string text, int exitCode);
    ~CrashReport();
    CrashReport(const CrashReport&) = delete;
    CrashReport& operator=(const CrashReport&) = delete;

    /** Prints the text. Returns the exit code. */
    int print() const noexcept;

private:
    struct Native;
    Output& m_Output;
    const std::string m_Text;
    const int m_ExitCode;
    std::unique_ptr<Native> m_Native;
};

/** `time` on the clock on this machine's wall. */
std::tm localTime(std::time_t time);

/** An NVMe function on a PCI bus that the system's NVMe driver does not serve. */
struct UnservedFunction
{
    std::string m_Address;
    std::string m_Driver; ///< empty: none at all
};

/** Controllers that no enumeration can find, because another driver or none has them. */
std::vector<UnservedFunction> unservedFunctions();

/** Whether a driver holds devices for others, such as virtual machines, and has no use for them itself. */
bool isPassThrough(std::string_view driver);

/** What a user does who wants such a device back. */
std::string_view passThroughRemedy();

/** The running system. */
struct System
{
    std::string m_Name;       ///< with its version
    bool m_Supported = false; ///< whether it has what the search for drives needs
};

System runningSystem();

/** What a user does whose system is not supported. */
std::string_view systemRemedy();

/** The NVMe driver that the system has. */
std::string_view driverName();

/** Whether that driver is there, for the case that no controller shows it. */
bool isDriverThere();

/** What a user does who may not open the drives. */
std::string_view permissionRemedy();

/** What a user does whose controllers have no driver. */
std::string_view driverRemedy();

} // namespace Host::Platform
