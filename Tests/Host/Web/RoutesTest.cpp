#include "Web/Routes.h"

#include "Documents/MetricsFormat.h"
#include "Documents/StatusPage.h"
#include "Host/Web/FakeView.h"
#include "Web/Problem.h"
#include "Web/Status.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <regex>

namespace {

using Host::Web::Request;
using Host::Web::Response;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

class RoutesTest : public testing::Test
{
protected:
    Response ask(const Request& request)
    {
        std::optional<Response> answer;
        try {
            Host::Web::routes(m_View, showText)(request,
                                                [&](Response response) { answer = std::move(response); });
        } catch (const Host::Failure& failure) {
            return Host::Web::problem(failure); // as the server does
        }
        return answer ? std::move(*answer) : Response{0, {}, {}, {}, nullptr};
    }

    Response get(const std::string& path, const std::map<std::string, std::string>& query = {})
    {
        Request request;
        request.m_Method = "GET";
        request.m_Path = path;
        request.m_Query = query;
        return ask(request);
    }

    json content(const std::string& path, const std::map<std::string, std::string>& query = {})
    {
        const Response answer = get(path, query);
        EXPECT_EQ(answer.m_Status, 200U) << answer.m_Body;
        EXPECT_EQ(answer.m_Type, "application/json");
        return json::parse(answer.m_Body);
    }

    void expectProblem(const Response& answer, unsigned status, const std::string& detail)
    {
        EXPECT_EQ(answer.m_Status, status);
        EXPECT_EQ(answer.m_Type, "application/problem+json");
        const json problem = json::parse(answer.m_Body);
        EXPECT_EQ(problem.at("status"), status);
        EXPECT_EQ(problem.at("title"), Host::Web::statusText(status));
        EXPECT_EQ(problem.at("detail"), detail);
    }

    void expectWrongParameter(const Response& answer, const std::string& name)
    {
        EXPECT_EQ(answer.m_Status, 400U) << answer.m_Body;
        EXPECT_EQ(json::parse(answer.m_Body).at("parameter"), name);
    }

    /** The form, and the identifiers of the objects. */
    static std::string showText(const Host::ObjectStore& /*store*/,
                                const std::vector<const PI::CObject*>& objects,
                                const Host::Web::TextForm& form)
    {
        std::string text = std::to_string(form.m_Columns) + (form.m_Colours ? " coloured" : " plain");
        for (const PI::CObject* object : objects)
            text += ' ' + std::to_string(object->m_ID);
        return text;
    }

    HostTest::FakeView m_View;
};

TEST_F(RoutesTest, TheStatusIsThereBeforeAnyDriveWasRead)
{
    m_View.change([](auto& figures) { figures.m_Simulated = true; });
    const json status = content("/api/v1/status");
    EXPECT_EQ(status.at("drives").at("total"), 0);
    EXPECT_EQ(status.at("simulated"), true);
}

TEST_F(RoutesTest, DrivesAreAbsentUntilTheyAreRead)
{
    expectProblem(get("/api/v1/drives"), 503, "The drives have not been read yet.");
    m_View.change([](auto& figures) { figures.m_Trouble = "No permission."; });
    expectProblem(get("/api/v1/drives"), 503, "No permission.");
    expectProblem(get("/api/v1/drives/A"), 503, "No permission.");
    m_View.publish(1, {});
    EXPECT_THAT(content("/api/v1/drives").at("drives"), IsEmpty());
}

TEST_F(RoutesTest, EachDriveHasItsKeyAndAPathOfItsOwn)
{
    m_View.publish(1, {{1, "A", "/dev/nvme0n1"}, {3, "B/C D", "/dev/nvme1n1"}});
    const json drives = content("/api/v1/drives").at("drives");
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_EQ(drives[0].at("key"), "A");
    json drive = content("/api/v1/drives/B/C D");
    EXPECT_EQ(drive.at("device"), "/dev/nvme1n1");
    EXPECT_EQ(drive.at("format"), 1);
    drive.erase("format");
    EXPECT_EQ(drive, drives[1]);
    expectProblem(get("/api/v1/drives/X\x01"), 404, "No drive has the key \"X\x01\".");
    expectProblem(get("/api/v1/drives/"), 404, "There is nothing at this path.");
}

TEST_F(RoutesTest, TheJournalIsReadInPieces)
{
    for (const char* text : {"one", "two", "three"})
        m_View.addEntry(text);
    const json all = content("/api/v1/journal").at("entries");
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].at("number"), 1);
    EXPECT_EQ(all[0].at("text"), "one");
    const json piece = content("/api/v1/journal", {{"after", "1"}, {"limit", "1"}}).at("entries");
    ASSERT_EQ(piece.size(), 1U);
    EXPECT_EQ(piece[0].at("text"), "two");
    EXPECT_THAT(content("/api/v1/journal", {{"after", "3"}}).at("entries"), IsEmpty());
    for (const char* after : {"4", "18446744073709551615"})
        EXPECT_EQ(content("/api/v1/journal", {{"after", after}}).at("entries").size(), 3U)
            << "that entry was in another journal";
}

TEST_F(RoutesTest, TheJournalHasALimitOfItsOwn)
{
    for (int i = 0; i < 1001; ++i)
        m_View.addEntry("x");
    EXPECT_EQ(content("/api/v1/journal").at("entries").size(), 100U);
    EXPECT_EQ(content("/api/v1/journal", {{"limit", "1000"}}).at("entries").size(), 1000U);
}

TEST_F(RoutesTest, WrongParametersAreNamed)
{
    for (const char* after : {"", "-1", "x", "1.0", "18446744073709551616", " 1"})
        expectWrongParameter(get("/api/v1/journal", {{"after", after}}), "after");
    for (const char* limit : {"0", "1001"})
        expectWrongParameter(get("/api/v1/journal", {{"limit", limit}}), "limit");
    expectWrongParameter(get("/api/v1/journal", {{"Limit", "1"}}), "Limit");
    expectWrongParameter(get("/api/v1/status", {{"after", "1"}}), "after");
    expectWrongParameter(get("/api/v1/journal/stream", {{"limit", "1"}}), "limit");
    EXPECT_EQ(get("/api/v1/status", {{"", "1"}}).m_Status, 400U);
}

TEST_F(RoutesTest, AJournalThatCannotBeReadIsNoFaultOfTheRequest)
{
    m_View.change([](auto& figures) { figures.m_JournalFailure = "The disk is full."; });
    for (const char* path : {"/api/v1/journal", "/api/v1/journal/stream"})
        expectProblem(get(path), 503, "The disk is full.");
}

std::string firstEvents(const Response& answer)
{
    EXPECT_EQ(answer.m_Status, 200U);
    EXPECT_EQ(answer.m_Type, "text/event-stream");
    return answer.m_Events == nullptr ? "no stream" : answer.m_Events->next();
}

TEST_F(RoutesTest, AStreamBeginsWhereTheClientSays)
{
    m_View.addEntry("one");
    m_View.addEntry("two");
    EXPECT_EQ(firstEvents(get("/api/v1/journal/stream")), "");
    EXPECT_THAT(firstEvents(get("/api/v1/journal/stream", {{"after", "1"}})), testing::StartsWith("id: 2\n"));
    EXPECT_THAT(firstEvents(get("/api/v1/journal/stream", {{"after", "0"}})), testing::StartsWith("id: 1\n"));
    Request again;
    again.m_Method = "GET";
    again.m_Path = "/api/v1/journal/stream";
    again.m_Query = {{"after", "0"}};
    again.m_Headers = {{"last-event-id", "1"}};
    EXPECT_THAT(firstEvents(ask(again)), testing::StartsWith("id: 2\n"));
    again.m_Headers = {{"last-event-id", "1x"}};
    expectWrongParameter(ask(again), "Last-Event-ID");
}

TEST_F(RoutesTest, MetricsComeInTheFormatThatTheClientPrefers)
{
    m_View.publish(1, {{1, "A", "/dev/nvme0n1"}});
    const Response plain = get("/metrics");
    EXPECT_EQ(plain.m_Status, 200U);
    EXPECT_EQ(plain.m_Type, Host::Cli::contentType(Host::Cli::MetricsFormat::Text));
    EXPECT_THAT(plain.m_Body, HasSubstr("drive=\"A\""));
    Request open;
    open.m_Method = "GET";
    open.m_Path = "/metrics";
    open.m_Headers = {{"accept", "application/openmetrics-text; version=1.0.0"}};
    const Response answer = ask(open);
    EXPECT_EQ(answer.m_Type, Host::Cli::contentType(Host::Cli::MetricsFormat::OpenMetrics));
    EXPECT_TRUE(answer.m_Body.ends_with("# EOF\n"));
}

TEST_F(RoutesTest, ThePageShowsDrivesAndTheLastEntries)
{
    m_View.publish(1, {{1, "SERIAL", "/dev/nvme0n1"}});
    for (int i = 1; i <= 21; ++i)
        m_View.addEntry("entry " + std::to_string(i) + ".");
    const Response page = get("/");
    EXPECT_EQ(page.m_Status, 200U);
    EXPECT_EQ(page.m_Type, "text/html; charset=utf-8");
    EXPECT_THAT(page.m_Body, HasSubstr("SERIAL"));
    EXPECT_THAT(page.m_Body, HasSubstr("entry 21."));
    EXPECT_THAT(page.m_Body, HasSubstr("entry 2."));
    EXPECT_THAT(page.m_Body, testing::Not(HasSubstr("entry 1.")));
    EXPECT_THAT(page.m_Body, HasSubstr(Host::Cli::STYLE_PATH));
    const Response style = get(std::string(Host::Cli::STYLE_PATH));
    EXPECT_EQ(style.m_Type, "text/css; charset=utf-8");
    EXPECT_EQ(style.m_Body, Host::Cli::statusStyle());
}

TEST_F(RoutesTest, ThePageIsThereWithoutDrivesAndWithoutAJournal)
{
    EXPECT_EQ(get("/").m_Status, 200U);
    m_View.change([](auto& figures) { figures.m_JournalFailure = "The disk is full."; });
    const Response page = get("/");
    EXPECT_EQ(page.m_Status, 200U);
    EXPECT_THAT(page.m_Body, HasSubstr("The disk is full."));
}

TEST_F(RoutesTest, TheInterfaceDescribesItself)
{
    const json description = content("/api/v1/openapi.json");
    EXPECT_EQ(description.at("openapi"), "3.1.0");
    m_View.publish(1, {{1, "A", "/dev/nvme0n1"}});
    for (const auto& [path, operations] : description.at("paths").items()) {
        Request request;
        request.m_Path = path;
        request.m_Method = operations.contains("get") ? "GET" : "PUT";
        request.m_Local = request.m_MayChange = true;
        request.m_Path = std::regex_replace(request.m_Path, std::regex("\\{(key|object)\\}"), "A");
        request.m_Path = std::regex_replace(request.m_Path, std::regex("\\{property\\}"), "30059");
        EXPECT_THAT(ask(request).m_Status, testing::AnyOf(200U, 415U)) << path;
    }
}

TEST_F(RoutesTest, TheInterfaceDescribesAllOfItself)
{
    const json description = content("/api/v1/openapi.json");
    std::vector<std::string> described;
    for (const auto& [path, operations] : description.at("paths").items())
        described.push_back(path.substr(0, path.find('{')));
    EXPECT_THAT(Host::Web::routePaths(), testing::UnorderedElementsAreArray(described));
}

TEST_F(RoutesTest, TheDescriptionKnowsEveryKindOfEntry)
{
    using Host::Journal::Kind;
    const json kinds = content("/api/v1/openapi.json")
                           .at(json::json_pointer("/components/schemas/Entry/properties/kind/enum"));
    std::vector<std::string> expected;
    for (int kind = 0; kind <= static_cast<int>(Kind::ServiceEnded); ++kind)
        expected.emplace_back(Host::Journal::kindName(static_cast<Kind>(kind)));
    EXPECT_THAT(kinds.get<std::vector<std::string>>(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(RoutesTest, AnObjectIsShownAsADocument)
{
    EXPECT_EQ(get("/api/v1/objects/A").m_Status, 503U) << "no drive was read yet";
    m_View.publish(1, {{16, "A", "/dev/nvme0n1"}, {32, "B", "/dev/nvme1n1"}});
    const json shown = content("/api/v1/objects//dev/nvme1n1");
    ASSERT_EQ(shown.at("objects").size(), 2U) << "the adapter and its drive";
    EXPECT_EQ(shown.at("objects").at(0).at("id"), "0x0000000000000020");
    EXPECT_EQ(shown.at("facts").at(0).at("object"), "0x0000000000000020");
    EXPECT_TRUE(shown.contains("explanations"));
    EXPECT_TRUE(shown.contains("endOfLife"));
    const Response none = get("/api/v1/objects/C");
    EXPECT_EQ(none.m_Status, 404U);
    EXPECT_THAT(none.m_Body, HasSubstr("C"));
}

TEST_F(RoutesTest, AnObjectIsShownAsText)
{
    m_View.publish(1, {{16, "A", "/dev/nvme0n1"}});
    const Response text = get("/api/v1/objects/A", {{"columns", "72"}, {"colours", "1"}});
    EXPECT_EQ(text.m_Type, "text/plain; charset=utf-8");
    EXPECT_EQ(text.m_Body, "72 coloured 16 17");
    EXPECT_EQ(get("/api/v1/objects/A", {{"columns", "0"}}).m_Body, "0 plain 16 17");
    expectWrongParameter(get("/api/v1/objects/A", {{"columns", "10001"}}), "columns");
    expectWrongParameter(get("/api/v1/objects/A", {{"columns", "1"}, {"colours", "2"}}), "colours");
    expectWrongParameter(get("/api/v1/objects/A", {{"rows", "1"}}), "rows");
}

TEST_F(RoutesTest, APropertyIsShown)
{
    m_View.publish(1, {{16, "A", "/dev/nvme0n1"}});
    EXPECT_EQ(content("/api/v1/objects/A/properties/30059").at("property").at("id"), PI::PROP_CAPACITY);
    EXPECT_EQ(get("/api/v1/objects/B/properties/30059").m_Status, 404U);
    const Response wrong = get("/api/v1/objects/A/properties/colour");
    EXPECT_EQ(wrong.m_Status, 422U);
    EXPECT_THAT(wrong.m_Body, HasSubstr("There is no property"));
    expectWrongParameter(get("/api/v1/objects/A/properties/30059", {{"columns", "1"}}), "columns");
}

TEST_F(RoutesTest, UnknownPathsAndTricksLeadNowhere)
{
    m_View.publish(1, {{1, "A", "/dev/nvme0n1"}});
    for (const char* path :
         {"//", "/api", "/api/v1", "/api/v1/", "/api/v1/status/", "/api/v1/../v1/status", "/api/v1/journal/",
          "/API/v1/status", "/api/v1/%64rives", "/api/v1/drives//A", "/api/v1/objects/",
          "/api/v1/objects//properties/x", "/api/v1/objects/x/properties/"})
        EXPECT_EQ(get(path).m_Status, 404U) << path;
}

TEST_F(RoutesTest, APropertyIsSet)
{
    Request request;
    request.m_Method = "PUT";
    request.m_Path = "/api/v1/objects/plugin/properties/pollinterval";
    request.m_Local = request.m_MayChange = true;
    request.m_Headers = {{"content-type", "application/json"}};
    request.m_Body = R"({"value": 60})";
    EXPECT_EQ(ask(request).m_Status, 200U);
    EXPECT_THAT(m_View.m_Set, testing::ElementsAre("plugin pollinterval 60"));
    request.m_Body = R"({"speed": 60})";
    expectWrongParameter(ask(request), "value");
}

TEST_F(RoutesTest, EachPathSaysWhatItAllows)
{
    for (const char* path : {"/api/v1/status", "/api/v1/drives/A", "/api/v1/journal/stream"})
        for (const char* method : {"PUT", "POST", "DELETE", "OPTIONS", "TRACE", "get", "X"}) {
            Request request;
            request.m_Method = method;
            request.m_Path = path;
            request.m_MayChange = true;
            const Response answer = ask(request);
            EXPECT_EQ(answer.m_Status, 405U) << method << path;
            EXPECT_THAT(answer.m_Headers, testing::ElementsAre(testing::Pair("Allow", "GET, HEAD")));
        }
    Request request;
    request.m_Method = "DELETE";
    request.m_Path = "/api/v1/objects/A/properties/x";
    const Response answer = ask(request);
    EXPECT_EQ(answer.m_Status, 405U);
    EXPECT_THAT(answer.m_Headers, testing::ElementsAre(testing::Pair("Allow", "GET, HEAD, PUT")));
}

} // namespace
