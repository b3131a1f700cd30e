#pragma once

#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"
#include "Support/TraceCapture.h"

#include <Database/Database.h>
#include <DatabaseORM/DatabaseDAO.h>
#include <DatabaseORM/DatabaseException.h>
#include <DatabaseORM/ValueText.h>
#include <PI/ErrorCode.h>
#include <TLX/LanguageSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

/**
 * A real database file in a folder of its own, and a catalogue with many single quotes. It must be made
 * before the plug-in that uses it.
 */
class CDatabaseFile
{
public:
    CDatabaseFile()
    {
        m_Folder.Write("Ostrel.nls", "40024 It's 'healthy'\n40095 Critical\n40150 Degraded\n40099 Online\n"
                                     "40180 Warned\n40200 SSD\n40480 Known\n40488 Other\n"
                                     "40459 Too \"hot\", isn't it\n40460 Spare\\low\n");
        TLX::Language_Support::CLanguageSupport::SetFolder(m_Folder.Path());
        setDatabaseFile(File());
    }

    ~CDatabaseFile() { setDatabaseFile({}); }
    CDatabaseFile(const CDatabaseFile&) = delete;
    CDatabaseFile& operator=(const CDatabaseFile&) = delete;

    std::filesystem::path File() const { return m_Folder.Path() / "Ostrel.db"; }

    /** The rows as another program would read them. */
    std::vector<std::string> Query(const std::string& sql)
    {
        if (!m_Reader) {
            setDatabaseFile(File());
            m_Reader = getDatabasePointer()->m_Access;
        }
        return m_Reader->query(sql);
    }

    /** Prevents all others from writing until it is destroyed. */
    class CLock
    {
    public:
        explicit CLock(CDatabaseFile& file) : m_File(file) { m_File.Query("BEGIN EXCLUSIVE"); }
        ~CLock() { m_File.Query("ROLLBACK"); }
        CLock(const CLock&) = delete;
        CLock& operator=(const CLock&) = delete;

    private:
        CDatabaseFile& m_File;
    };

    void Write(const std::string& content) { m_Folder.Write("Ostrel.db", content); }

private:
    CTemporaryFolder m_Folder;
    std::shared_ptr<DatabaseWrapper::DatabaseDAO> m_Reader;
};

/** Records every statement and passes it on. */
class CStatementCounter : public DatabaseWrapper::DatabaseDAO
{
public:
    explicit CStatementCounter(std::shared_ptr<DatabaseWrapper::DatabaseDAO> database)
        : m_Database(std::move(database))
    {}

    std::vector<std::string> query(const std::string& sql) override
    {
        m_Statements.push_back(sql);
        return m_Database->query(sql);
    }

    std::size_t Count(const std::string& beginning) const
    {
        std::size_t count = 0;
        for (const std::string& statement : m_Statements)
            count += statement.starts_with(beginning) ? 1 : 0;
        return count;
    }

    const std::vector<std::string>& Statements() const { return m_Statements; }

private:
    std::shared_ptr<DatabaseWrapper::DatabaseDAO> m_Database;
    std::vector<std::string> m_Statements;
};

/** A database whose every statement throws. */
template<typename Exception>
class CThrowingDatabase : public DatabaseWrapper::DatabaseDAO
{
public:
    explicit CThrowingDatabase(Exception exception) : m_Exception(std::move(exception)) {}
    std::vector<std::string> query(const std::string&) override { throw m_Exception; }

private:
    Exception m_Exception;
};

/** The lines of the database among `lines`, which must be of one unit and name the class's `function`. */
inline std::vector<std::string> databaseTexts(const CTraceCapture& capture, const std::string& unit,
                                              const std::string& function)
{
    std::vector<std::string> texts;
    for (const CCapturedLine& line : capture.Lines()) {
        EXPECT_EQ(line.m_Level, 128U) << line.m_Text;
        EXPECT_EQ(line.m_SourceUnit, unit);
        EXPECT_EQ(line.m_Function, "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::" + function);
        texts.push_back(line.m_Text);
    }
    return texts;
}

/** What the plug-in does with the row of one object, and the line that it traces. */
struct CRowStatement
{
    std::string m_Function;
    std::function<std::uint32_t(CPluginUnderTest&)> m_Run;
    std::string m_Done;
    std::string m_Failed; ///< when the database fails with "broken"
};

/** A plug-in on a database file of its own. */
class CRowFixture : public testing::Test
{
protected:
    using Values = std::vector<std::string>;

    Values Query(const std::string& sql) { return m_File.Query(sql); }

    /** Makes every statement of the plug-in fail with `message` from now on. */
    void BreakDatabase(const std::string& message) { Throw(DBEXCEPTION::DatabaseException(message)); }

    template<typename Exception>
    void Throw(Exception exception)
    {
        m_Plugin.m_Database->m_Access = std::make_shared<CThrowingDatabase<Exception>>(std::move(exception));
    }

    /** Records the statements of the plug-in from now on. */
    std::shared_ptr<CStatementCounter> CountStatements()
    {
        auto counter = std::make_shared<CStatementCounter>(m_Plugin.m_Database->m_Access);
        m_Plugin.m_Database->m_Access = counter;
        return counter;
    }

    using Statements = std::vector<CRowStatement>;

    /** The statements in turn, at every mask that shows the database's lines. */
    void ExpectLines(const std::string& unit, const Statements& statements)
    {
        ExpectLines(unit, statements, 0, &CRowStatement::m_Done);
    }

    void ExpectLinesOfFailures(const std::string& unit, const Statements& statements)
    {
        BreakDatabase("broken");
        ExpectLines(unit, statements, PI::ERR_GENERAL_FAILURE, &CRowStatement::m_Failed);
    }

    /** No line at `mask`, whether the statements succeed or fail. */
    void ExpectNoLines(std::uint32_t mask, const Statements& statements)
    {
        const CTraceCapture capture(mask);
        for (const CRowStatement& statement : statements)
            EXPECT_EQ(statement.m_Run(m_Plugin), 0U) << statement.m_Function;
        BreakDatabase("broken");
        for (const CRowStatement& statement : statements)
            EXPECT_EQ(statement.m_Run(m_Plugin), PI::ERR_GENERAL_FAILURE) << statement.m_Function;
        EXPECT_THAT(capture.Lines(), testing::IsEmpty());
    }

    /** Exceptions that are not the database's pass. */
    void ExpectOtherExceptionsPass(const Statements& statements)
    {
        Throw(std::runtime_error("of another kind"));
        for (const CRowStatement& statement : statements)
            EXPECT_THROW(statement.m_Run(m_Plugin), std::runtime_error) << statement.m_Function;
    }

    CDatabaseFile m_File;
    CPluginUnderTest m_Plugin;

private:
    void ExpectLines(const std::string& unit, const Statements& statements, std::uint32_t result,
                     std::string CRowStatement::*line)
    {
        for (const std::uint32_t mask : {128U, 256U, 0x80000000U}) {
            for (const CRowStatement& statement : statements) {
                SCOPED_TRACE(statement.m_Function + " at mask " + std::to_string(mask));
                const CTraceCapture capture(mask);
                EXPECT_EQ(statement.m_Run(m_Plugin), result);
                EXPECT_THAT(databaseTexts(capture, unit, statement.m_Function),
                            testing::ElementsAre(statement.*line));
            }
        }
    }
};

} // namespace TestSupport
