#pragma once

#include "SqliteConnection.h"

namespace Database {

/** Fails when a newer release made the tables. Changes nothing. */
void refuseNewer(CSqliteConnection& connection);

/**
 * Brings the tables to the present schema when the file has another version's, or none. Creates each table
 * afresh and copies its rows, matching columns by name. A former table stays in the file as
 * "<table>_version<number>" when the new one cannot take all of it (other columns, or rows with the same
 * key). Views and indexes of other programs stay; those that do not fit the new columns stay on the former
 * table. Fails when the tables are those of a newer release.
 */
void migrate(CSqliteConnection& connection);

} // namespace Database
