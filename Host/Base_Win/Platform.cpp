#include "Base/Platform.h"

#include "Base_Win/ConsoleState.h"

#include <TLX/Win/UniqueHandle.h>

#include <climits>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace Host::Platform {
namespace {

constexpr int STANDARD_OUTPUT = 1;
constexpr int STANDARD_ERROR = 2;

struct LocalMemory
{
    void operator()(void* memory) const { LocalFree(memory); }
};

std::string utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back();
    return result;
}

HANDLE systemHandle(int descriptor)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the runtime's way to say it
    return descriptor < 0 ? INVALID_HANDLE_VALUE : reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

} // namespace

std::vector<std::string> commandLine(int /*argc*/, char** /*argv*/)
{
    int count = 0;
    const std::unique_ptr<LPWSTR[], LocalMemory> words(CommandLineToArgvW(GetCommandLineW(), &count));
    if (!words)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "command line");
    std::vector<std::string> result;
    result.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        result.push_back(utf8(words[static_cast<std::size_t>(i)]));
    return result;
}

std::filesystem::path programFolder()
{
    std::wstring file(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size()));
        if (length == 0)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "program file");
        if (length < file.size()) {
            file.resize(length);
            return std::filesystem::path(file).parent_path();
        }
        file.resize(file.size() * 2);
    }
}

std::filesystem::path defaultDataFolder()
{
    const wchar_t* const folder = _wgetenv(L"ProgramData");
    return std::filesystem::path(folder != nullptr && *folder != L'\0' ? folder : L"C:\\ProgramData") /
           L"Ostrel";
}

std::filesystem::path newTemporaryFolder(const std::string& name)
{
    const std::filesystem::path base =
        std::filesystem::temp_directory_path() / (name + "-" + std::to_string(GetCurrentProcessId()) + "-");
    for (std::uint64_t number = GetTickCount64();; ++number) {
        std::filesystem::path path = base;
        path += std::to_string(number);
        if (std::filesystem::create_directory(path))
            return path;
    }
}

std::error_code accessError(const std::filesystem::path& path, Access access)
{
    const DWORD right = access == Access::Read      ? GENERIC_READ
                        : access == Access::Write   ? GENERIC_WRITE
                        : access == Access::AddFile ? FILE_ADD_FILE
                                                    : FILE_ADD_SUBDIRECTORY;
    // Windows opens a folder only with this flag.
    const TLX::Win::CFileHandle handle(
        CreateFileW(path.c_str(), right, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return {handle.Valid() ? 0 : static_cast<int>(GetLastError()), std::system_category()};
}

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file)
    : m_Handle(LoadLibraryExW(std::filesystem::absolute(file).make_preferred().c_str(), nullptr,
                              LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS))
{
    if (m_Handle == nullptr)
        throw std::runtime_error(std::system_category().message(static_cast<int>(GetLastError())));
}

DynamicLibrary::~DynamicLibrary()
{
    FreeLibrary(static_cast<HMODULE>(m_Handle));
}

void* DynamicLibrary::symbol(const char* name) const
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_Handle), name));
}

struct StandardOutput::Native
{
    explicit Native(Standard which)
        : m_Descriptor(which == Standard::Output ? STANDARD_OUTPUT : STANDARD_ERROR),
          m_Name(which == Standard::Output ? "standard output" : "standard error")
    {
        if (m_Descriptor.m_Number >= 0)
            (void)_setmode(m_Descriptor.m_Number, _O_BINARY);
    }

    struct Descriptor
    {
        explicit Descriptor(int standard) : m_Number(_dup(standard)) {}
        ~Descriptor()
        {
            if (m_Number >= 0)
                (void)_close(m_Number);
        }
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;

        const int m_Number;
    };

    Descriptor m_Descriptor;
    const char* m_Name;
    ConsoleState m_Console{systemHandle(m_Descriptor.m_Number)};
};

StandardOutput::StandardOutput(Standard which) : m_Native(std::make_unique<Native>(which)) {}
StandardOutput::~StandardOutput() = default;

void StandardOutput::write(std::string_view text)
{
    while (!text.empty()) {
        const auto length = static_cast<unsigned>(std::min<std::size_t>(text.size(), INT_MAX));
        const int written = _write(m_Native->m_Descriptor.m_Number, text.data(), length);
        // The runtime does not translate every error number that Windows has for a pipe without a reader.
        if (written < 0 && (errno == EPIPE || _doserrno == ERROR_NO_DATA))
            throw ReaderGone();
        if (written < 0)
            throw std::system_error(errno, std::generic_category(), m_Native->m_Name);
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool StandardOutput::isTerminal() const
{
    return m_Native->m_Console.isConsole();
}

unsigned StandardOutput::terminalWidth() const
{
    constexpr unsigned usual = 80;
    CONSOLE_SCREEN_BUFFER_INFO information{};
    if (GetConsoleScreenBufferInfo(systemHandle(m_Native->m_Descriptor.m_Number), &information) == FALSE)
        return usual;
    const int columns = information.srWindow.Right - information.srWindow.Left + 1;
    return columns > 0 ? static_cast<unsigned>(columns) : usual;
}

bool StandardOutput::showsColours() const
{
    return m_Native->m_Console.showsColours();
}

void divertStandardOutput(Elsewhere elsewhere)
{
    if (elsewhere == Elsewhere::StandardError && _dup2(STANDARD_ERROR, STANDARD_OUTPUT) == 0)
        return;
    const int null = _wopen(L"NUL", _O_WRONLY | _O_NOINHERIT);
    if (null < 0)
        throw std::system_error(errno, std::generic_category(), "NUL");
    if (null == STANDARD_OUTPUT)
        return;
    (void)_dup2(null, STANDARD_OUTPUT);
    (void)_close(null);
}

std::tm localTime(std::time_t time)
{
    std::tm result{};
    (void)localtime_s(&result, &time);
    return result;
}

std::string_view permissionRemedy()
{
    return "Run it in a console that was started as administrator; Windows lets only administrators read "
           "disks.";
}

std::string_view driverRemedy()
{
    return "Give the device the standard NVM Express driver (stornvme) in the Device Manager.";
}

} // namespace Host::Platform
