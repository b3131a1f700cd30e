#pragma once

#include "SqliteConnection.h"

namespace Database {

/**
 * Numbers the rows of a table from 1 again, in their order, once one of them has an identifier below 1 or
 * beyond half of what a model holds. A replaced row gets a fresh identifier each time, so that a start with
 * many drives uses up thousands of them.
 */
void renumber(CSqliteConnection& connection);

} // namespace Database
