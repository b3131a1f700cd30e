#include "Web/AnswerReader.h"

#include "Base/Failure.h"
#include "Web/AnswerText.h"
#include "Web/Problem.h"

#include <PI/ErrorCode.h>

#include <gtest/gtest.h>

namespace {

using namespace Host::Web;
using Host::ExitCode;
using Host::Failure;

TEST(AnswerReaderTest, ReadsWhatTheServiceSends)
{
    Response response;
    response.m_Status = 404;
    response.m_Body = "12345";
    const std::string head = headText(response, false);
    for (std::size_t size = 0; size < head.size(); ++size)
        EXPECT_FALSE(readHead(head.substr(0, size))) << size;
    const auto read = readHead(head + "12345");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->m_Status, 404U);
    EXPECT_EQ(read->m_Size, head.size());
    EXPECT_EQ(read->m_Length, 5U);
}

TEST(AnswerReaderTest, AStreamHasNoLength)
{
    EXPECT_FALSE(readHead("HTTP/1.1 200 OK\r\n\r\nContent-Length: 5\r\n\r\n")->m_Length);
}

TEST(AnswerReaderTest, RefusesWhatIsNoAnswer)
{
    for (const std::string& wrong :
         {std::string("SSH-2.0"), std::string("x"), std::string("HTTP/1.1 abc\r\n\r\n"),
          std::string("HTTP/1.1 200 OK\r\nContent-Length: x\r\n\r\n"),
          "HTTP/1.1 200 OK\r\n" + std::string(70'000, 'x')})
        EXPECT_THROW((void)readHead(wrong), Failure);
}

Failure thrown(unsigned status, const std::string& content)
{
    try {
        throwProblem(status, content);
    } catch (const Failure& failure) {
        return failure;
    }
}

TEST(AnswerReaderTest, AProblemBecomesTheFailureThatItTellsOf)
{
    const Failure plain = thrown(404, problem(Failure(ExitCode::NoSuchObject, "None.")).m_Body);
    EXPECT_EQ(plain.exitCode(), ExitCode::NoSuchObject);
    EXPECT_STREQ(plain.what(), "None.");
    EXPECT_FALSE(plain.result());
    const Failure refused = thrown(500, problem(Failure(ExitCode::RequestFailed, "No.", {11, 20003})).m_Body);
    EXPECT_STREQ(refused.what(), "No.");
    ASSERT_TRUE(refused.result());
    EXPECT_EQ(refused.result()->m_Request, 11);
    EXPECT_EQ(refused.result()->m_Code, 20003U);
    const Response gone = problem(Failure(ExitCode::RequestFailed, "Gone.", {11, PI::ERR_OBJECT_NOT_FOUND}));
    EXPECT_EQ(gone.m_Status, 404U);
    EXPECT_EQ(thrown(gone.m_Status, gone.m_Body).exitCode(), ExitCode::RequestFailed);
}

TEST(AnswerReaderTest, AProblemThatCannotBeReadIsAFailureToo)
{
    for (const char* content : {"", "{", "[]", "{}", R"({"detail": 1})"})
        EXPECT_STREQ(thrown(500, content).what(), "The answer of the service cannot be understood.");
    const Failure odd = thrown(500, R"({"detail": "No.", "failure": {"request": "x"}})");
    EXPECT_STREQ(odd.what(), "No.");
}

} // namespace
