#include "Web/AnswerText.h"

#include "Support/VirtualClock.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;

class Nothing : public Host::Web::IEventStream
{
    std::string next() override { return {}; }
};

TEST(AnswerTextTest, HasTheFieldsOfTheAnswer)
{
    Host::Web::Response response;
    response.m_Status = 405;
    response.m_Type = "a/b";
    response.m_Body = "12345";
    response.m_Headers = {{"Allow", "PUT"}};
    const std::string head = Host::Web::headText(response, true);
    EXPECT_TRUE(head.starts_with("HTTP/1.1 405 Method Not Allowed\r\n"));
    EXPECT_TRUE(head.ends_with("\r\n\r\n"));
    for (const char* field :
         {"Connection: keep-alive", "Content-Type: a/b", "Content-Length: 5", "Allow: PUT"})
        EXPECT_THAT(head, HasSubstr(std::string("\r\n") + field + "\r\n"));
    EXPECT_THAT(Host::Web::headText(response, false), HasSubstr("\r\nConnection: close\r\n"));
}

TEST(AnswerTextTest, TellsTheDate)
{
    constexpr std::uint64_t leapDay = 1'709'210'096'999; // 2024-02-29
    const TestSupport::CVirtualClock clock(leapDay);
    EXPECT_THAT(Host::Web::headText({}, false), HasSubstr("\r\nDate: Thu, 29 Feb 2024 12:34:56 GMT\r\n"));
}

TEST(AnswerTextTest, EveryAnswerRestrictsBrowsers)
{
    const std::string head = Host::Web::headText({}, false);
    for (const char* field :
         {"Cache-Control: no-store", "X-Content-Type-Options: nosniff", "Referrer-Policy: no-referrer",
          "Cross-Origin-Resource-Policy: same-origin",
          "Content-Security-Policy: default-src 'none'; style-src 'self'; img-src 'self'; base-uri 'none'; "
          "form-action 'none'; frame-ancestors 'none'"})
        EXPECT_THAT(head, HasSubstr(std::string("\r\n") + field + "\r\n"));
    EXPECT_THAT(head, Not(HasSubstr("Access-Control")));
    EXPECT_THAT(head, HasSubstr("Content-Length: 0\r\n"));
}

TEST(AnswerTextTest, AStreamHasNoLength)
{
    Host::Web::Response response;
    response.m_Events = std::make_unique<Nothing>();
    EXPECT_THAT(Host::Web::headText(response, false), Not(HasSubstr("Content-Length")));
}

} // namespace
