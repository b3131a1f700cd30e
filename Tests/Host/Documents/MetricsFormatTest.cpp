#include "Documents/MetricsFormat.h"

#include <gtest/gtest.h>

namespace {

using namespace Host::Cli;
using enum MetricsFormat;

TEST(MetricsFormat, NamesTheTypesWithTheirVersions)
{
    EXPECT_EQ(contentType(Text), "text/plain; version=0.0.4; charset=utf-8");
    EXPECT_EQ(contentType(OpenMetrics), "application/openmetrics-text; version=1.0.0; charset=utf-8");
}

TEST(MetricsFormat, IsTheTextFormatForClientsThatNameNone)
{
    for (const char* accept :
         {"", "*/*", "text/plain", "text/html, application/xhtml+xml, */*;q=0.8", "application/json", ",;=,"})
        EXPECT_EQ(chosenFormat(accept), Text) << accept;
}

TEST(MetricsFormat, IsOpenMetricsForClientsThatPreferIt)
{
    for (const char* accept :
         {"application/openmetrics-text",
          "application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;q=0.75,"
          "text/plain;version=0.0.4;q=0.5,*/*;q=0.1",
          "APPLICATION/OpenMetrics-Text ; Version = \"1.0.0\" ; Q = 0.7 , text/plain; q=0.7",
          "application/openmetrics-text;q=0.2,text/plain;version=1.0.0",
          "application/openmetrics-text;q=0.4,text/plain;q=0.3,*/*;q=0.9"})
        EXPECT_EQ(chosenFormat(accept), OpenMetrics) << accept;
}

TEST(MetricsFormat, IsTheTextFormatForClientsThatPreferIt)
{
    for (const char* accept :
         {"application/openmetrics-text;q=0.5,text/plain", "application/openmetrics-text;q=0.3,text/*;q=0.4",
          "application/openmetrics-text;q=0.3,*/*;q=0.4", "application/openmetrics-text;version=0.0.1",
          "application/openmetrics-text;version=2.0.0,text/plain;q=0.1", "application/openmetrics-text;q=0",
          "application/openmetrics-text;q=x", "application/openmetrics-text;q=2",
          "application/openmetrics-text;q=0.5x", "application/openmetrics-text;q=-1"})
        EXPECT_EQ(chosenFormat(accept), Text) << accept;
}

} // namespace
