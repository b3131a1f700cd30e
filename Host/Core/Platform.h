#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What differs from system to system; each has a folder of its own behind this header.
namespace Host::Platform {

/** The words of the command line in UTF-8, the program's name first, from the arguments of `main`. */
std::vector<std::string> commandLine(int argc, char** argv);

/** The folder of the running program. */
std::filesystem::path programFolder();

/** Where the plug-in lies, seen from the program's folder. */
std::filesystem::path pluginFile(const std::filesystem::path& programFolder);

/** Where settings are kept when the user names no folder. */
std::filesystem::path defaultDataFolder();

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

/** Where the rest of the process writes that believes to write to standard output. */
enum class Elsewhere
{
    StandardError,
    Nowhere,
};

/**
 * The process's standard output, kept for the program's results alone: from construction on, whatever else
 * prints to standard output lands elsewhere.
 */
class ResultChannel
{
public:
    ResultChannel();
    ~ResultChannel();
    ResultChannel(const ResultChannel&) = delete;
    ResultChannel& operator=(const ResultChannel&) = delete;

    void divertOthers(Elsewhere elsewhere);

    /** Writes at once. Throws `std::system_error` when not everything could be written. */
    void write(std::string_view text);

    bool isTerminal() const;
    /** Columns of the terminal; 80 when it does not say. */
    unsigned terminalWidth() const;
    /** Whether the terminal understands the escape sequences of colours. */
    bool showsColours() const;

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

/** Whether standard error is a terminal. */
bool errorsGoToTerminal();

/** An NVMe function on a PCI bus that the system's NVMe driver does not serve. */
struct UnservedFunction
{
    std::string m_Address;
    std::string m_Driver; ///< empty: none at all
};

/** Controllers that no enumeration can find, because another driver or none has them. */
std::vector<UnservedFunction> unservedFunctions();

/** What a user does who may not open the drives. */
std::string_view permissionRemedy();

/** What a user does whose controllers have no driver. */
std::string_view driverRemedy();

} // namespace Host::Platform
