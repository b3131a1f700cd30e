#include "Web/SetProperty.h"

#include "Host/Web/FakeView.h"
#include "Web/Parameters.h"

#include <PI/ErrorCode.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>

namespace {

using namespace Host::Web;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class SetPropertyTest : public testing::Test
{
protected:
    SetPropertyTest()
    {
        m_Request.m_Method = "PUT";
        m_Request.m_Local = true;
        m_Request.m_MayChange = true;
        m_Request.m_Headers = {{"content-type", "Application/JSON; charset=utf-8"}};
        m_Request.m_Body = R"({"value": 60})";
    }

    Response set()
    {
        std::optional<Response> answer;
        setProperty(m_View, {"plugin", "pollinterval"}, m_Request,
                    [&](Response response) { answer = std::move(response); });
        return answer ? std::move(*answer) : Response{0, {}, {}, {}, nullptr};
    }

    HostTest::FakeView m_View;
    Request m_Request;
};

TEST_F(SetPropertyTest, TheAnswerTellsTheValueInForce)
{
    const Response answer = set();
    EXPECT_EQ(answer.m_Status, 200U);
    const auto document = nlohmann::json::parse(answer.m_Body);
    EXPECT_EQ(document.size(), 3U);
    EXPECT_EQ(document.at("format"), 1);
    EXPECT_EQ(document.at("property").at("id"), PI::PROP_POLL_INTERVAL);
    EXPECT_EQ(document.at("property").at("value"), 60);
    EXPECT_THAT(document.at("text").get<std::string>(), EndsWith(" is now 60.\n"));
    m_Request.m_Body = R"({"value": "1"})";
    EXPECT_THAT(nlohmann::json::parse(set().m_Body).at("text").get<std::string>(),
                EndsWith(" is now 60, for 1 is beyond its limits, 2 and 255.\n"));
    EXPECT_THAT(m_View.m_Set, ElementsAre("plugin pollinterval 60", "plugin pollinterval 1"));
}

TEST_F(SetPropertyTest, NobodyChangesAnythingWithoutBeingAllowedTo)
{
    m_Request.m_MayChange = false;
    EXPECT_EQ(set().m_Status, 403U);
    EXPECT_THAT(m_View.m_Set, IsEmpty());
}

TEST_F(SetPropertyTest, NobodyChangesAnythingOverHttp)
{
    m_Request.m_Local = m_Request.m_MayChange = false;
    const Response refused = set();
    EXPECT_EQ(refused.m_Status, 403U);
    EXPECT_EQ(nlohmann::json::parse(refused.m_Body).at("detail"),
              "Properties are not set over HTTP. Use ostrel set on the machine.");
    EXPECT_THAT(m_View.m_Set, IsEmpty());
}

TEST_F(SetPropertyTest, AFormOfABrowserIsRefused)
{
    m_Request.m_Headers = {{"content-type", "text/plain"}};
    EXPECT_EQ(set().m_Status, 415U);
    m_Request.m_Headers.clear();
    EXPECT_EQ(set().m_Status, 415U);
    EXPECT_THAT(m_View.m_Set, IsEmpty());
}

TEST_F(SetPropertyTest, ContentWithoutAValueIsRefused)
{
    for (const char* body : {"", "{", "60", "[]", "{}", R"({"value": null})", R"({"value": true})",
                             R"({"value": {}})", R"({"value": 1, "more": 2})", R"({"value": 1}x)"}) {
        m_Request.m_Body = body;
        EXPECT_THROW(set(), WrongParameter) << body;
    }
    EXPECT_THAT(m_View.m_Set, IsEmpty());
}

TEST_F(SetPropertyTest, FailuresKeepTheirReason)
{
    m_View.m_OnSet = [](const auto& done) {
        done(nullptr,
             std::make_exception_ptr(Host::Failure(Host::ExitCode::RequestFailed, "Refused.", {11, 20003})));
    };
    const Response refused = set();
    EXPECT_EQ(refused.m_Status, 500U);
    const auto problem = nlohmann::json::parse(refused.m_Body);
    EXPECT_EQ(problem.at("detail"), "Refused.");
    EXPECT_EQ(problem.at("failure").at("request"), 11);
    EXPECT_EQ(problem.at("failure").at("code"), 20003);
    m_View.m_OnSet = [](const auto& done) {
        done(nullptr, std::make_exception_ptr(Host::Failure(Host::ExitCode::RequestFailed, "Refused.",
                                                            {11, PI::ERR_PROPERTY_NOT_SETTABLE})));
    };
    EXPECT_EQ(set().m_Status, 409U);
    m_View.m_OnSet = [](const auto& done) {
        done(nullptr, std::make_exception_ptr(Host::Failure(Host::ExitCode::NoSuchObject, "None.")));
    };
    EXPECT_EQ(set().m_Status, 404U);
    m_View.m_OnSet = [](const auto& done) {
        done(nullptr, std::make_exception_ptr(std::runtime_error("an inner secret")));
    };
    const Response failed = set();
    EXPECT_EQ(failed.m_Status, 500U);
    EXPECT_THAT(failed.m_Body, testing::Not(testing::HasSubstr("secret")));
}

} // namespace
