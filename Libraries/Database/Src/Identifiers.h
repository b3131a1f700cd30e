#pragma once

#include "SqliteConnection.h"

namespace Database {

/**
 * Numbers the rows of a table from 1 again, in their order, when an identifier is below 1 or above half of
 * what a model can hold. Each replaced row gets a fresh identifier, so a start with many drives uses up
 * thousands of them.
 */
void renumber(CSqliteConnection& connection);

} // namespace Database
