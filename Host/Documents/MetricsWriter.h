#pragma once

#include "Documents/MetricsFormat.h"
#include "Facts/Histogram.h"
#include "Facts/MetricFamily.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Host::Cli {

/**
 * Appends `name="value"`. Quotes, backslashes and line ends are escaped. Other control characters, and bytes
 * that are not UTF-8, become "\x" and two hexadecimal digits.
 */
void appendLabel(std::string& labels, std::string_view name, std::string_view value);

/**
 * Writes metrics, one family after the other. A family without metrics leaves no trace. Labels are those that
 * `appendLabel` writes, with commas between them.
 */
class MetricsWriter
{
public:
    /** `size` is about how many bytes will be written. */
    explicit MetricsWriter(MetricsFormat format, std::size_t size = 0) : m_Format(format)
    {
        m_Text.reserve(size);
    }

    /** What follows is of this family, which must live until the next one begins. */
    void begin(const MetricFamily& family);

    // Adds a metric. Its labels are both texts. A number that is not finite is left out.

    void add(std::uint64_t number, std::string_view labels = {}, std::string_view more = {});
    void add(std::int64_t number, std::string_view labels = {}, std::string_view more = {});
    void add(double number, std::string_view labels = {}, std::string_view more = {});
    void add(float number, std::string_view labels = {}, std::string_view more = {});

    /** Adds all metrics of a histogram. */
    void add(const Histogram& histogram);

    /** Everything that was written. Call it once, at the end. */
    std::string text() &&;

private:
    void writeHead();

    template<typename Number>
    void writeLine(Number number, std::string_view labels, std::string_view more,
                   std::string_view suffix = {});

    const MetricsFormat m_Format;
    const MetricFamily* m_Family = nullptr;
    bool m_HasHead = false; ///< whether the family's head was written
    std::string m_Text;
};

} // namespace Host::Cli
