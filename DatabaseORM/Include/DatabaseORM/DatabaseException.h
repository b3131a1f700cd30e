#pragma once

#include <stdexcept>

namespace DBEXCEPTION {

/** The one exception of the database layer; `what()` says what went wrong. */
class DatabaseException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace DBEXCEPTION
