#include "Web/SetProperty.h"

#include "Host/Web/FakeView.h"
#include "Web/Parameters.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>

namespace {

using namespace Host::Web;
using testing::ElementsAre;
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
    EXPECT_EQ(
        nlohmann::json::parse(answer.m_Body),
        nlohmann::json::parse(R"({"format":1,"object":"plugin","property":"pollinterval","text":"done"})"));
    m_Request.m_Body = R"({"value": "sixty"})";
    set();
    EXPECT_THAT(m_View.m_Set, ElementsAre("plugin pollinterval 60", "plugin pollinterval sixty"));
}

TEST_F(SetPropertyTest, NobodyChangesAnythingWithoutBeingAllowedTo)
{
    m_Request.m_MayChange = false;
    EXPECT_EQ(set().m_Status, 403U);
    EXPECT_THAT(m_View.m_Set, IsEmpty());
}

TEST_F(SetPropertyTest, NobodyChangesAnythingOverHttp)
{
    m_Request.m_Local = false;
    for (const bool hasToken : {false, true}) {
        m_Request.m_MayChange = hasToken;
        const Response refused = set();
        EXPECT_EQ(refused.m_Status, 403U);
        EXPECT_EQ(nlohmann::json::parse(refused.m_Body).at("detail"),
                  "Properties are not set over HTTP. Use ostrel set on the machine.");
    }
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
        done("",
             std::make_exception_ptr(Host::Failure(Host::ExitCode::RequestFailed, "Refused.", {11, 20003})));
    };
    const Response refused = set();
    EXPECT_EQ(refused.m_Status, 500U);
    const auto problem = nlohmann::json::parse(refused.m_Body);
    EXPECT_EQ(problem.at("detail"), "Refused.");
    EXPECT_EQ(problem.at("failure").at("request"), 11);
    EXPECT_EQ(problem.at("failure").at("code"), 20003);
    m_View.m_OnSet = [](const auto& done) {
        done("", std::make_exception_ptr(Host::Failure(Host::ExitCode::NoSuchObject, "None.")));
    };
    EXPECT_EQ(set().m_Status, 404U);
    m_View.m_OnSet = [](const auto& done) {
        done("", std::make_exception_ptr(std::runtime_error("an inner secret")));
    };
    const Response failed = set();
    EXPECT_EQ(failed.m_Status, 500U);
    EXPECT_THAT(failed.m_Body, testing::Not(testing::HasSubstr("secret")));
}

} // namespace
