#include "Documents/MetricsWriter.h"

#include <TLX/Utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace Host::Cli {
namespace {

/** The numbers' shortest texts have at most 24 characters. */
using Digits = std::array<char, 32>;

template<typename Number>
std::string_view written(Digits& digits, Number number)
{
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), static_cast<std::size_t>(end - digits.data())};
}

template<typename Number>
std::string_view withLineEnd(Digits& digits, Number number)
{
    const std::string_view text = written(digits, number);
    digits.at(text.size()) = '\n';
    return {digits.data(), text.size() + 1};
}

/** A scrape has thousands of lines, so the text grows once for each. */
void appendAll(std::string& text, std::initializer_list<std::string_view> parts)
{
    std::size_t length = 0;
    for (const std::string_view part : parts)
        length += part.size();
    std::size_t place = text.size();
    text.resize(place + length);
    for (const std::string_view part : parts)
        place += part.copy(text.data() + place, part.size());
}

constexpr auto IS_PLAIN = [](char byte) { return byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\'; };

void appendEscaped(std::string& text, std::string_view character, bool isHarmless)
{
    if (character == "\"" || character == "\\")
        text.append("\\").append(character);
    else if (character == "\n")
        text += "\\n";
    else if (isHarmless)
        text += character;
    else
        for (const char byte : character) {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto number = static_cast<unsigned char>(byte);
            text += "\\\\x";
            text += digits[number >> 4U];
            text += digits[number & 0xFU];
        }
}

/** A limit as both formats have it: always with a point. */
void appendLimit(std::string& text, double limit)
{
    Digits digits;
    const std::string_view number = written(digits, limit);
    text.append("le=\"").append(number).append(number.find('.') == number.npos ? ".0\"" : "\"");
}

std::string_view typeText(MetricType type, MetricsFormat format)
{
    switch (type) {
    case MetricType::Counter:
        return "counter";
    case MetricType::Histogram:
        return "histogram";
    case MetricType::Info:
        if (format == MetricsFormat::OpenMetrics)
            return "info";
        [[fallthrough]];
    case MetricType::Gauge:
        return "gauge";
    }
    return {};
}

} // namespace

void appendLabel(std::string& labels, std::string_view name, std::string_view value)
{
    labels.append(name).append("=\"");
    while (!value.empty()) {
        const auto end = std::find_if_not(value.begin(), value.end(), IS_PLAIN);
        const auto length = static_cast<std::size_t>(end - value.begin());
        labels.append(value.substr(0, length));
        value.remove_prefix(length);
        if (value.empty())
            break;
        const TLX::Misc::CUtf8Character character = TLX::Misc::firstCharacter(value);
        appendEscaped(labels, value.substr(0, character.m_Length),
                      character.m_Valid && !character.IsControl());
        value.remove_prefix(character.m_Length);
    }
    labels += '"';
}

void MetricsWriter::begin(const MetricFamily& family)
{
    m_Family = &family;
    m_HasHead = false;
}

void MetricsWriter::add(std::uint64_t number, std::string_view labels, std::string_view more)
{
    writeLine(number, labels, more);
}

void MetricsWriter::add(std::int64_t number, std::string_view labels, std::string_view more)
{
    writeLine(number, labels, more);
}

void MetricsWriter::add(double number, std::string_view labels, std::string_view more)
{
    if (std::isfinite(number))
        writeLine(number, labels, more);
}

void MetricsWriter::add(float number, std::string_view labels, std::string_view more)
{
    if (std::isfinite(number))
        writeLine(number, labels, more);
}

void MetricsWriter::add(const Histogram& histogram)
{
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < Histogram::LIMITS.size(); ++i) {
        count += histogram.m_Counts.at(i);
        std::string limit;
        appendLimit(limit, Histogram::LIMITS.at(i));
        writeLine(count, limit, {}, "_bucket");
    }
    count += histogram.m_Counts.back();
    writeLine(count, "le=\"+Inf\"", {}, "_bucket");
    writeLine(histogram.m_Sum, {}, {}, "_sum");
    writeLine(count, {}, {}, "_count");
}

std::string MetricsWriter::text() &&
{
    if (m_Format == MetricsFormat::OpenMetrics)
        m_Text += "# EOF\n";
    return std::move(m_Text);
}

void MetricsWriter::writeHead()
{
    const bool isOpen = m_Format == MetricsFormat::OpenMetrics;
    const std::string_view name = isOpen ? m_Family->stem() : m_Family->m_Name;
    appendAll(m_Text, {"# HELP ", name, " ", m_Family->m_Help, ".\n# TYPE ", name, " ",
                       typeText(m_Family->type(), m_Format), "\n"});
    if (isOpen && !m_Family->unit().empty())
        appendAll(m_Text, {"# UNIT ", name, " ", m_Family->unit(), "\n"});
    m_HasHead = true;
}

template<typename Number>
void MetricsWriter::writeLine(Number number, std::string_view labels, std::string_view more,
                              std::string_view suffix)
{
    if (!m_HasHead)
        writeHead();
    Digits digits;
    const std::string_view end = withLineEnd(digits, number);
    if (labels.empty())
        appendAll(m_Text, {m_Family->m_Name, suffix, " ", end});
    else
        appendAll(m_Text, {m_Family->m_Name, suffix, "{", labels, more.empty() ? "" : ",", more, "} ", end});
}

} // namespace Host::Cli
