#include "Commands/TraceMask.h"

#include "Base/Text.h"

namespace Host::Cli {

std::optional<std::uint32_t> parseMask(std::string_view text)
{
    return in32Bits(startsWithIgnoringCase(text, "0x") ? parseHexadecimal(text) : parseNumber(text, 10));
}

bool addTraceMask(std::string_view text, TraceOptions& trace)
{
    const std::size_t sign = text.find('=');
    const bool named = sign != std::string_view::npos;
    const auto mask = parseMask(named ? text.substr(sign + 1) : text);
    const auto module = named ? parseMask(text.substr(0, sign)) : std::nullopt;
    if (!mask || (named && !module))
        return false;
    if (module)
        trace.m_ModuleMasks[*module] = *mask;
    else
        trace.m_Mask = *mask;
    return true;
}

} // namespace Host::Cli
