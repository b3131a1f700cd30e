#include "Documents/StatusPage.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <gmock/gmock.h>

#include <regex>

namespace {

using namespace Host::Cli;
using Host::DriveAnswer;
using Host::Journal::NumberedEntry;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint64_t NEW_YEAR = 1'767'225'600'000; // 2026-01-01

class StatusPage : public testing::Test
{
protected:
    static std::string pageOf(const std::vector<HostTest::DriveObjects>& drives,
                              std::vector<DriveAnswer> answers = {}, const ServiceFigures& figures = {},
                              const std::vector<NumberedEntry>& entries = {})
    {
        return statusPage(
            Snapshot(Host::ObjectStore(HostTest::topologyOf(drives), {}, std::move(answers)), 1, NEW_YEAR),
            figures, entries, NEW_YEAR);
    }

    static NumberedEntry entryOf(std::uint64_t number, Host::Journal::Severity severity,
                                 const std::string& text)
    {
        NumberedEntry entry;
        entry.m_Number = number;
        entry.m_Entry.m_Severity = severity;
        entry.m_Entry.m_Text = text;
        entry.m_Entry.m_End = NEW_YEAR + number;
        return entry;
    }

private:
    HostTest::Catalogue m_Catalogue;
};

/** Every element is closed, in order. */
void expectWellFormed(const std::string& page)
{
    std::vector<std::string> open;
    const std::regex tag("<(/?)([a-z][a-z0-9]*)[^<>]*>");
    for (std::sregex_iterator each(page.begin(), page.end(), tag), end; each != end; ++each) {
        const std::string name = (*each)[2];
        if (name == "meta" || name == "link")
            continue;
        if ((*each)[1].length() == 0) {
            open.push_back(name);
            continue;
        }
        ASSERT_FALSE(open.empty()) << name;
        EXPECT_EQ(open.back(), name);
        open.pop_back();
    }
    EXPECT_TRUE(open.empty());
    constexpr std::string_view doctype = "<!DOCTYPE html>";
    ASSERT_TRUE(page.starts_with(doctype));
    EXPECT_EQ(std::regex_replace(page.substr(doctype.size()), tag, "").find_first_of("<>"),
              std::string::npos);
}

TEST_F(StatusPage, HasTheVerdictInOneSentence)
{
    const std::string page = pageOf({{1, "S1", "/dev/nvme0n1"}});
    EXPECT_THAT(page, HasSubstr("<p class=\"verdict critical\"><strong>CRITICAL</strong>: nvme0n1 (S1): "
                                "Critical: Available spare below its threshold, Media is read-only; 0 of 1 "
                                "drive healthy</p>\n"));
    EXPECT_THAT(page, HasSubstr("<title>CRITICAL - Ostrel</title>"));
    expectWellFormed(page);
}

TEST_F(StatusPage, HasARowForEachDrive)
{
    const std::string page = pageOf({{1, "S1", "/dev/nvme0n1"}});
    EXPECT_THAT(page,
                HasSubstr("<tr><td data-column=\"Device\"><a href=\"/api/v1/drives/S1\">nvme0n1</a></td>"
                          "<td data-column=\"Model\">MODEL-OF-THE-ADAPTER</td>"
                          "<td data-column=\"Serial\">S1</td><td data-column=\"Firmware\">FW1</td>"
                          "<td data-column=\"Capacity\">1.82 TiB</td>"
                          "<td data-column=\"Temp\">36 °C</td><td data-column=\"Wear\">120%</td>"
                          "<td data-column=\"Health\"><span class=\"critical\">Critical: "));
    EXPECT_THAT(page, Not(HasSubstr("simulated")));
    EXPECT_THAT(page, Not(HasSubstr("silent")));
}

TEST_F(StatusPage, MarksDrivesThatDoNotAnswer)
{
    DriveAnswer answer;
    answer.m_DeviceName = "/dev/nvme0n1";
    answer.m_SilentRounds = 1;
    answer.m_LastAnswer = answer.m_SilentSince = NEW_YEAR;
    DriveAnswer unheard;
    unheard.m_DeviceName = "/dev/nvme1n1";
    unheard.m_SilentRounds = 2;
    const std::string page = pageOf({{1, "S1", "/dev/nvme0n1"}}, {answer, unheard});
    EXPECT_THAT(page, ContainsRegex("<tr class=\"silent\">.*nvme0n1.*<span class=\"warning\">does not answer "
                                    "since .*; its health was: Critical</span></td></tr>\n"
                                    "<tr class=\"silent\">.*nvme1n1.*<td data-column=\"Serial\">-</td>.*"
                                    "<span class=\"critical\">does not answer</span>"));
}

TEST_F(StatusPage, HasTheLastEntriesTheNewestFirst)
{
    using Host::Journal::Severity;
    const std::string page =
        pageOf({}, {}, {},
               {entryOf(1, Severity::Information, "A was added."), entryOf(2, Severity::Warning, "B is hot."),
                entryOf(3, Severity::Error, "C is dead.")});
    EXPECT_THAT(page, ContainsRegex("<time datetime=\"2026-01-01T00:00:00.003Z\">.*</time></td>"
                                    "<td class=\"critical\">.*</td><td>C is dead.</td></tr>\n"
                                    ".*<td class=\"warning\">.*</td><td>B is hot.</td></tr>\n"
                                    ".*<td class=\"information\">.*</td><td>A was added.</td></tr>\n"));
    expectWellFormed(page);
}

TEST_F(StatusPage, SaysWhatIsMissing)
{
    ServiceFigures figures;
    figures.m_Simulated = true;
    figures.m_Trouble = "no plug-in";
    const std::string page = statusPage(Snapshot(Host::ObjectStore({}), 0, 0), figures, {}, NEW_YEAR);
    EXPECT_THAT(page, HasSubstr("<p>These drives are simulated.</p>"));
    EXPECT_THAT(page, HasSubstr("<strong>UNKNOWN</strong>: no plug-in</p>"));
    EXPECT_THAT(page, HasSubstr("<p>None.</p>"));
    EXPECT_THAT(page, HasSubstr("<p>No entries.</p>"));
    EXPECT_THAT(page, Not(HasSubstr("The drives were read")));
    expectWellFormed(page);
}

TEST_F(StatusPage, NoTextBecomesMarkup)
{
    const std::string hostile = "\"><script>alert('1')</script>&\x1B\xFF";
    const std::string page = pageOf({{1, hostile, "/dev/" + hostile}}, {}, {},
                                    {entryOf(1, Host::Journal::Severity::Error, hostile)});
    EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;script&gt;alert(&#39;1&#39;)&lt;/script&gt;&amp;??"));
    EXPECT_THAT(page, HasSubstr("href=\"/api/v1/drives/%22%3E%3Cscript%3Ealert%28%271%27%29%3C%2Fscript%3E"
                                "%26%1B%FF\""));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("\x1B")));
    expectWellFormed(page);
}

TEST_F(StatusPage, NeedsNothingThatAStrictContentPolicyForbids)
{
    const std::string page = pageOf({{1, "S1", "/dev/nvme0n1"}});
    for (const char* forbidden : {"style=", "<style", "<script", "<img", "data:", " on", "http:", "https:"})
        EXPECT_THAT(page, Not(HasSubstr(forbidden))) << forbidden;
    EXPECT_THAT(page, HasSubstr("<link rel=\"stylesheet\" href=\"/style.css\">"));
    for (const char* forbidden : {"url(", "@import", "http"})
        EXPECT_THAT(std::string(statusStyle()), Not(HasSubstr(forbidden))) << forbidden;
    EXPECT_THAT(std::string(statusStyle()), HasSubstr("prefers-color-scheme: dark"));
}

} // namespace
