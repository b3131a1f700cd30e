#pragma once

#include <DatabaseORM/DatabaseDAO.h>
#include <DatabaseORM/DatabaseException.h>

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

/** Records each statement. Returns the scripted answers in order, and then nothing. */
class CRecordingDatabase : public DatabaseWrapper::DatabaseDAO
{
public:
    void Answer(std::vector<std::string> values) { m_Replies.push_back({std::move(values), std::nullopt}); }
    void Fail(std::string message) { m_Replies.push_back({{}, std::move(message)}); }

    std::vector<std::string> query(const std::string& sql) override
    {
        m_Statements.push_back(sql);
        if (m_Replies.empty())
            return {};
        const CReply reply = std::move(m_Replies.front());
        m_Replies.pop_front();
        if (reply.m_Failure)
            throw DBEXCEPTION::DatabaseException(*reply.m_Failure);
        return reply.m_Values;
    }

    const std::vector<std::string>& Statements() const { return m_Statements; }

private:
    struct CReply
    {
        std::vector<std::string> m_Values;
        std::optional<std::string> m_Failure;
    };

    std::deque<CReply> m_Replies;
    std::vector<std::string> m_Statements;
};

} // namespace TestSupport
