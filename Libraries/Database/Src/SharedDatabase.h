#pragma once

#include "SqliteDatabase.h"

#include <memory>

namespace Database {

/** The database of the storage that `getDatabasePointer` gives. */
std::shared_ptr<CSqliteDatabase> sharedDatabase();

} // namespace Database
