#pragma once

#include "SqliteConnection.h"

namespace Database {

/**
 * Brings the tables to the present schema when the file has another version's, or none. Each table is made
 * afresh and takes over its rows, column by column of the same name. A former table that holds more than the
 * new one can take over (other columns, or rows with the same key) stays in the file as
 * "<table>_version<number>".
 */
void migrate(CSqliteConnection& connection);

} // namespace Database
