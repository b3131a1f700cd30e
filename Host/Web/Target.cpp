#include "Web/Target.h"

#include "Base/Text.h"

#include <algorithm>

namespace Host::Web {
namespace {

bool isControl(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char character = text[i];
        if (character == '%') {
            const auto code = parseNumber(text.substr(i + 1, 2), 16);
            if (!code || i + 2 >= text.size())
                return std::nullopt;
            character = static_cast<char>(*code);
            i += 2;
        }
        if (isControl(character))
            return std::nullopt;
        decoded += character;
    }
    return decoded;
}

bool addParameter(std::map<std::string, std::string>& query, std::string_view parameter)
{
    const std::size_t equals = parameter.find('=');
    const auto name = percentDecoded(parameter.substr(0, equals));
    const auto value =
        percentDecoded(equals == std::string_view::npos ? std::string_view() : parameter.substr(equals + 1));
    return name && value && query.emplace(*name, *value).second;
}

bool isHost(std::string_view host)
{
    return !host.empty() && host.find('@') == std::string_view::npos &&
           std::none_of(host.begin(), host.end(), isControl);
}

} // namespace

std::optional<Target> parseTarget(std::string_view target)
{
    constexpr std::string_view scheme = "http://";
    Target result;
    const bool isAbsolute = startsWithIgnoringCase(target, scheme);
    if (isAbsolute) {
        target.remove_prefix(scheme.size());
        result.m_Host = target.substr(0, target.find_first_of("/?"));
        target.remove_prefix(result.m_Host.size());
        if (!isHost(result.m_Host))
            return std::nullopt;
    }
    const std::size_t mark = target.find('?');
    const auto path = percentDecoded(target.substr(0, mark));
    if (!path || (path->empty() ? !isAbsolute : !target.starts_with('/')))
        return std::nullopt;
    result.m_Path = path->empty() ? "/" : *path;
    std::string_view rest = mark == std::string_view::npos ? std::string_view() : target.substr(mark + 1);
    while (!rest.empty()) {
        const std::size_t end = rest.find('&');
        if (!addParameter(result.m_Query, rest.substr(0, end)))
            return std::nullopt;
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return result;
}

} // namespace Host::Web
