#pragma once

#include "SqliteConnection.h"

namespace Database {

/** Fails when a newer release than this one made the tables. Changes nothing. */
void refuseNewer(CSqliteConnection& connection);

/**
 * Brings the tables to the present schema when the file has another version's, or none. Each table is made
 * afresh and takes over its rows, column by column of the same name. A former table that holds more than the
 * new one can take over (other columns, or rows with the same key) stays in the file as
 * "<table>_version<number>". Views of other people's stay, and so do their indexes and triggers; those that
 * do not fit the new columns stay on the former table. A newer release's tables are refused.
 */
void migrate(CSqliteConnection& connection);

} // namespace Database
