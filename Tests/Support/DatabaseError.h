#pragma once

#include <DatabaseORM/DatabaseException.h>

#include <gtest/gtest.h>

#include <string>

namespace TestSupport {

/** The message of the database exception that `operation` throws. The test fails when it throws none. */
template<class Operation>
std::string databaseError(Operation operation)
{
    try {
        operation();
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        return exception.what();
    }
    ADD_FAILURE() << "no DatabaseException was thrown";
    return {};
}

} // namespace TestSupport
