#include "Documents/MetricsFormat.h"

#include "Base/Text.h"

#include <charconv>
#include <string>

namespace Host::Cli {
namespace {

constexpr std::string_view BLANKS = " \t";

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(BLANKS);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(BLANKS) - begin + 1);
}

/** Takes what comes before the first `separator` away from `text`. */
std::string_view taken(std::string_view& text, char separator)
{
    const std::string_view head = text.substr(0, text.find(separator));
    text.remove_prefix(head.size() < text.size() ? head.size() + 1 : head.size());
    return trimmed(head);
}

std::string_view unquoted(std::string_view text)
{
    const bool isQuoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

/** From 0 to 1. What is no such number counts as 0. */
double weightOf(std::string_view text)
{
    double weight = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), weight);
    const bool isWeight = error == std::errc() && end == text.data() + text.size();
    return isWeight && weight > 0 && weight <= 1 ? weight : 0;
}

/** One type of content that a client takes. */
struct Range
{
    std::string_view m_Type;
    std::string_view m_Version;
    double m_Weight = 1;
};

Range rangeOf(std::string_view text)
{
    Range range{taken(text, ';'), {}};
    while (!text.empty()) {
        std::string_view value = taken(text, ';');
        const std::string_view name = taken(value, '=');
        if (equalIgnoringCase(name, "version"))
            range.m_Version = unquoted(trimmed(value));
        else if (equalIgnoringCase(name, "q"))
            range.m_Weight = weightOf(trimmed(value));
    }
    return range;
}

/** How much a client likes a format. The more exact range counts. */
class Liking
{
public:
    void note(int exactness, double weight)
    {
        if (exactness < m_Exactness)
            return;
        m_Weight = exactness > m_Exactness || weight > m_Weight ? weight : m_Weight;
        m_Exactness = exactness;
    }

    double weight() const { return m_Weight; }

private:
    int m_Exactness = 0;
    double m_Weight = 0;
};

bool hasVersion(const Range& range, std::string_view version)
{
    return range.m_Version.empty() || range.m_Version == version;
}

} // namespace

std::string_view contentType(MetricsFormat format)
{
    return format == MetricsFormat::OpenMetrics ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
                                                : "text/plain; version=0.0.4; charset=utf-8";
}

MetricsFormat chosenFormat(std::string_view accept)
{
    constexpr int any = 1;
    constexpr int family = 2;
    constexpr int exact = 3;
    Liking plain;
    Liking open; // Only a client that names it gets it.
    while (!accept.empty()) {
        const Range range = rangeOf(taken(accept, ','));
        if (equalIgnoringCase(range.m_Type, "application/openmetrics-text") && hasVersion(range, "1.0.0"))
            open.note(exact, range.m_Weight);
        else if (equalIgnoringCase(range.m_Type, "text/plain") && hasVersion(range, "0.0.4"))
            plain.note(exact, range.m_Weight);
        else if (equalIgnoringCase(range.m_Type, "text/*"))
            plain.note(family, range.m_Weight);
        else if (range.m_Type == "*/*")
            plain.note(any, range.m_Weight);
    }
    return open.weight() > 0 && open.weight() >= plain.weight() ? MetricsFormat::OpenMetrics
                                                                : MetricsFormat::Text;
}

} // namespace Host::Cli
