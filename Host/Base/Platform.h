#pragma once

#include "Base/Output.h"

#include <TLX/Event.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// What differs between the systems. Each system has its own folder with an implementation of this header.
namespace Host::Platform {

/**
 * The words of the command line in UTF-8, from the arguments of `main`. The first one is the program's name.
 */
std::vector<std::string> commandLine(int argc, char** argv);

/** The folder of the running program. */
std::filesystem::path programFolder();

/** The folder of the settings when the user names none. */
std::filesystem::path defaultDataFolder();

/** Creates a folder for this user alone, whose name begins with `name`. Throws `std::system_error`. */
std::filesystem::path newTemporaryFolder(const std::string& name);

/** What a process may want to do with a file or folder. */
enum class Access
{
    Read,
    Write,
    AddFile,   ///< to this folder
    AddFolder, ///< to this folder
};

/** Why the system does not allow this process that access to `path`. No error when it is allowed. */
std::error_code accessError(const std::filesystem::path& path, Access access);

/** A loaded dynamic library. The destructor unloads it. */
class DynamicLibrary
{
public:
    /** Throws `std::runtime_error` with the system's reason. */
    explicit DynamicLibrary(const std::filesystem::path& file);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /** The address of an export, or null when the library has no export of that name. */
    void* symbol(const char* name) const;

private:
    void* m_Handle;
};

/**
 * A file that only one process can hold at a time. The process holds it until it ends, at the latest. Other
 * processes can read its process identifier in the file. Deleting the file does not let another process in.
 */
class LockFile
{
public:
    explicit LockFile(const std::filesystem::path& file);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /**
     * Creates the file if it is missing. Returns whether this process holds it from now on. It does not when
     * another process holds it. Throws `std::system_error` when the file cannot be created or opened, for
     * example because a folder has its name.
     */
    bool take();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/** Where output goes that other parts of the process write to standard output. */
enum class Elsewhere
{
    StandardError,
    Nowhere,
};

/** The program that read one of our outputs has closed it. */
class ReaderGone : public std::runtime_error
{
public:
    ReaderGone() : std::runtime_error("no program reads the output any more") {}
};

/** One of the outputs that the process got at its start. */
enum class Standard
{
    Output,
    Error,
};

/**
 * A standard output under a descriptor of its own. Later changes of the process's own descriptor do not
 * affect it. Once an object exists, a write to an output that is no longer read fails. It does not end the
 * process.
 */
class StandardOutput : public Output
{
public:
    explicit StandardOutput(Standard which);
    ~StandardOutput() override;
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /**
     * Throws `ReaderGone`, or `std::system_error` when the text could not be written completely for another
     * reason.
     */
    void write(std::string_view text) override;

    bool isTerminal() const override;
    unsigned terminalWidth() const override;
    bool showsColours() const override;

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/**
 * From now on, whatever others such as a plug-in print to standard output goes elsewhere. A `StandardOutput`
 * that was made before still writes to the real one.
 */
void divertStandardOutput(Elsewhere elsewhere);

/** What the signal SIGHUP asks for. */
enum class HangUp : std::uint8_t
{
    End,    ///< the end of the program, because its terminal was closed
    Reload, ///< that the program reads its settings again
};

/**
 * While it lives, it receives requests to end the program: an interrupt, a closed terminal, a shutdown. Until
 * `defer` is called, a request ends the program at once. After that the first request signals `asked()`, and
 * the second one ends the program. Only one may exist. Create it while the process has a single thread.
 */
class TerminationRequest
{
public:
    /** Throws `std::system_error`. */
    explicit TerminationRequest(HangUp hangUp = HangUp::End);
    ~TerminationRequest();
    TerminationRequest(const TerminationRequest&) = delete;
    TerminationRequest& operator=(const TerminationRequest&) = delete;

    /** From now on the first request only signals `asked()`, and the program decides when it ends. */
    void defer();

    /** A manual-reset event. */
    TLX::Threading::CEvent& asked();

    /** An auto-reset event that each `HangUp::Reload` signals. Other systems than Linux have none. */
    TLX::Threading::CEvent& reload();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/**
 * While it lives, a crash prints a last text and ends the process with the exit code `exitCode`. Otherwise a
 * caller could mistake the exit code of the crash for a result. Only one may live at a time.
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

/** What this process has used so far. A figure is missing when the system does not tell it. */
struct ProcessFigures
{
    std::optional<double> m_ProcessorSeconds;
    std::optional<std::uint64_t> m_ResidentBytes;
    std::optional<std::uint64_t> m_OpenDescriptors; ///< on Windows, open handles
};

ProcessFigures processFigures();

/** `time` in the time zone of this machine. */
std::tm localTime(std::time_t time);

/** Milliseconds since the machine started. It counts on while the machine sleeps. */
std::optional<std::uint64_t> uptime();

/** What differs from boot to boot. Empty when the system does not tell it. */
std::string bootIdentity();

/** An NVMe function on a PCI bus that the system's NVMe driver does not use. */
struct UnservedFunction
{
    std::string m_Address;
    std::string m_Driver; ///< empty: it has no driver
};

/** Controllers that no enumeration can find, because they have another driver or none. */
std::vector<UnservedFunction> unservedFunctions();

/** Whether this driver only reserves devices for others, such as virtual machines. */
bool isPassThrough(std::string_view driver);

/** What a user must do to get such a device back. */
std::string_view passThroughRemedy();

/** The running system. */
struct System
{
    std::string m_Name;       ///< with its version
    bool m_Supported = false; ///< whether it has what is needed to find drives
};

System runningSystem();

/** What a user can do when the system is not supported. */
std::string_view systemRemedy();

/** The name of the system's NVMe driver. */
std::string_view driverName();

/** Whether that driver is loaded. It is asked when no controller was found. */
bool isDriverThere();

/** What a user can do who has no permission to open the drives. */
std::string_view permissionRemedy();

/** What a user can do when controllers have no driver. */
std::string_view driverRemedy();

} // namespace Host::Platform
