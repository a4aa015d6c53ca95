#pragma once

#include <FED_Database.h>

#include <cstdint>
#include <istream>
#include <string>

namespace qelta {

/// Reads a table of comma-separated values with a header line into the custom block of a key, and
/// returns the number of its records. A block that stands there is replaced.
///
/// Columns `index` and `id` tell where a row goes: to the record index, or to the id or name in the
/// id map of the key's ID_TYPE, which learns it; without either, rows are numbered from 0. Every
/// other column is a field: integers if all its values are, else doubles, else texts. Three
/// adjacent columns NAME.x, NAME.y, NAME.z are a vector, and six of them NAME.xx, .yy, .zz, .xy,
/// .yz, .zx a tensor. Values may stand in double quotes, empty numbers are no numbers.
///
/// Damage is a failure that names `name` and the line; the database is then as it was, but for ids
/// that it learnt. Memory for the whole table.
std::uint64_t ImportCsv(std::istream& text, const std::string& name, FED_Database& database,
                        const FED_DataDescriptor& key);

}  // namespace qelta
