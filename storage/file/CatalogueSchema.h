#pragma once

#include "SqliteConnection.h"

namespace qelta {

/// Number of tables in the file, whoever made them. Zero for an empty file.
std::int64_t CountTables(SqliteConnection& connection);

/// Makes the tables in a file that has none, within a transaction.
void CreateTables(SqliteConnection& connection);

/// Fails when the file is no catalogue, or one of a newer format.
void CheckFormat(SqliteConnection& connection);

/// Makes commits durable, with a write-ahead log or without one.
void PrepareForWriting(SqliteConnection& connection, bool usesWal);

}  // namespace qelta
