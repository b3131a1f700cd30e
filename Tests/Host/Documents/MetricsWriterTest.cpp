#include "Documents/MetricsWriter.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace {

using namespace Host::Cli;
using enum MetricsFormat;

constexpr MetricFamily BYTES = {"x_bytes_total", "Bytes", "place"};
constexpr MetricFamily SPEED = {"x_speed", "Speed"};
constexpr MetricFamily ABOUT = {"x_info", "What it is"};
constexpr MetricFamily DURATION = {"x_seconds", "Durations", {}, true};

template<typename Write>
std::string written(MetricsFormat format, Write write)
{
    MetricsWriter writer(format);
    write(writer);
    return std::move(writer).text();
}

std::string labelOf(std::string_view value)
{
    std::string text;
    appendLabel(text, "a", value);
    return text;
}

void writeThree(MetricsWriter& writer)
{
    writer.begin(BYTES);
    writer.add(std::uint64_t{18446744073709551614U}, "place=\"here\"");
    writer.add(std::uint64_t{0}, "place=\"there\"", "b=\"c\"");
    writer.begin(SPEED);
    writer.add(0.1);
    writer.begin(ABOUT);
    writer.add(std::uint64_t{1}, "n=\"1\"");
}

TEST(MetricsWriter, WritesTheTextFormat)
{
    EXPECT_EQ(written(Text, writeThree), "# HELP x_bytes_total Bytes.\n"
                                         "# TYPE x_bytes_total counter\n"
                                         "x_bytes_total{place=\"here\"} 18446744073709551614\n"
                                         "x_bytes_total{place=\"there\",b=\"c\"} 0\n"
                                         "# HELP x_speed Speed.\n"
                                         "# TYPE x_speed gauge\n"
                                         "x_speed 0.1\n"
                                         "# HELP x_info What it is.\n"
                                         "# TYPE x_info gauge\n"
                                         "x_info{n=\"1\"} 1\n");
}

TEST(MetricsWriter, WritesOpenMetrics)
{
    EXPECT_EQ(written(OpenMetrics, writeThree), "# HELP x_bytes Bytes.\n"
                                                "# TYPE x_bytes counter\n"
                                                "# UNIT x_bytes bytes\n"
                                                "x_bytes_total{place=\"here\"} 18446744073709551614\n"
                                                "x_bytes_total{place=\"there\",b=\"c\"} 0\n"
                                                "# HELP x_speed Speed.\n"
                                                "# TYPE x_speed gauge\n"
                                                "x_speed 0.1\n"
                                                "# HELP x What it is.\n"
                                                "# TYPE x info\n"
                                                "x_info{n=\"1\"} 1\n"
                                                "# EOF\n");
}

TEST(MetricsWriter, WritesAHistogramWithCountsThatGrow)
{
    Histogram histogram;
    histogram.add(0.002);
    histogram.add(0.75);
    histogram.add(9);
    EXPECT_EQ(written(Text,
                      [&](MetricsWriter& writer) {
                          writer.begin(DURATION);
                          writer.add(histogram);
                      }),
              "# HELP x_seconds Durations.\n"
              "# TYPE x_seconds histogram\n"
              "x_seconds_bucket{le=\"0.001\"} 0\n"
              "x_seconds_bucket{le=\"0.0025\"} 1\n"
              "x_seconds_bucket{le=\"0.005\"} 1\n"
              "x_seconds_bucket{le=\"0.01\"} 1\n"
              "x_seconds_bucket{le=\"0.025\"} 1\n"
              "x_seconds_bucket{le=\"0.05\"} 1\n"
              "x_seconds_bucket{le=\"0.1\"} 1\n"
              "x_seconds_bucket{le=\"0.25\"} 1\n"
              "x_seconds_bucket{le=\"0.5\"} 1\n"
              "x_seconds_bucket{le=\"1.0\"} 2\n"
              "x_seconds_bucket{le=\"2.5\"} 2\n"
              "x_seconds_bucket{le=\"5.0\"} 2\n"
              "x_seconds_bucket{le=\"+Inf\"} 3\n"
              "x_seconds_sum 9.752\n"
              "x_seconds_count 3\n");
}

TEST(MetricsWriter, LeavesOutFamiliesWithoutNumbers)
{
    const auto write = [](MetricsWriter& writer) {
        writer.begin(SPEED);
        writer.add(std::numeric_limits<double>::quiet_NaN());
        writer.add(std::numeric_limits<double>::infinity());
        writer.add(std::numeric_limits<float>::quiet_NaN());
    };
    EXPECT_EQ(written(Text, write), "");
    EXPECT_EQ(written(OpenMetrics, write), "# EOF\n");
}

TEST(MetricsWriter, WritesEachNumberInItsShortestForm)
{
    const auto write = [](MetricsWriter& writer) {
        writer.begin(SPEED);
        writer.add(36.6F);
        writer.add(-1.5);
        writer.add(6.6e22);
    };
    EXPECT_EQ(written(Text, write), "# HELP x_speed Speed.\n# TYPE x_speed gauge\n"
                                    "x_speed 36.6\nx_speed -1.5\nx_speed 6.6e+22\n");
}

TEST(MetricsWriter, LetsNoLabelEnd)
{
    EXPECT_EQ(labelOf(""), R"(a="")");
    EXPECT_EQ(labelOf("S1 ~"), R"(a="S1 ~")");
    EXPECT_EQ(labelOf("\"} 1\n\\n"), R"(a="\"} 1\n\\n")");
    EXPECT_EQ(labelOf("\xC3\xA4\U0001F600"), "a=\"\xC3\xA4\U0001F600\"");
    EXPECT_EQ(labelOf("x\x1B\r\x7F"), R"(a="x\\x1b\\x0d\\x7f")");
    EXPECT_EQ(labelOf("\xFF\xC3"), R"(a="\\xff\\xc3")");
    EXPECT_EQ(labelOf("\u009B"), R"(a="\\xc2\\x9b")");
    EXPECT_EQ(labelOf(std::string_view("\0a", 2)), R"(a="\\x00a")");
}

TEST(MetricFamily, HasTheUnitOfItsName)
{
    EXPECT_EQ(BYTES.unit(), "bytes");
    EXPECT_EQ(BYTES.stem(), "x_bytes");
    EXPECT_EQ(SPEED.unit(), "");
    EXPECT_EQ(DURATION.unit(), "seconds");
    EXPECT_EQ(DURATION.stem(), "x_seconds");
    EXPECT_EQ(ABOUT.stem(), "x");
}

} // namespace
