#include "Records/Module.h"

#include <cstdarg>
#include <cstdio>

namespace NAMESPACE_Ostrel {
namespace {

constexpr std::uint32_t LANGUAGE_CODE = ('e' << 8U) | 'n';

// Declared before the module information, which keeps a reference to it.
const TLX::Language_Support::CLanguageSupport::CLngFile
    g_LanguageFile("Ostrel.nls", LANGUAGE_CODE, "utf-8", 1,
                   {"General error in Ostrel plugin", "No information available for this error"});

} // namespace

const char PLUGIN_VERSION[] = OSTREL_VERSION;

TLX::Misc::CModuleInfo g_ModuleInfo(MODULE_ID, MODULE_NAME, "P:" OSTREL_VERSION " F:" OSTREL_VERSION,
                                    g_LanguageFile, TLX::Misc::CErrorMessageList());

void consolePrint(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    // With several files at once, clang-tidy 14 takes the list for uninitialised.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    (void)std::vprintf(format, arguments);
    va_end(arguments);
    (void)std::fflush(stdout);
}

} // namespace NAMESPACE_Ostrel
