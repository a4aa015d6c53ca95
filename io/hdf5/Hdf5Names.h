#pragma once

// The names of what stands in a file; docs/hdf5.md explains it.
namespace qelta::hdf5 {

// Attributes of the root.
constexpr const char* kFormat = "format";
constexpr const char* kFormatName = "qelta";
constexpr const char* kVersion = "format_version";
constexpr int kNewestVersion = 1;

// Groups in the root.
constexpr const char* kBlocks = "blocks";
constexpr const char* kAliases = "aliases";
constexpr const char* kIdMaps = "id_maps";

// Attributes of a block, beside its key.
constexpr const char* kKind = "kind";
constexpr const char* kQuantity = "quantity";
constexpr const char* kRecordFormat = "record_format";
constexpr const char* kProperties = "properties";
constexpr const char* kRecords = "records";

// Attributes of datasets.
constexpr const char* kIdType = "id_type";  // of blocks, too
constexpr const char* kComponents = "components";

constexpr const char* kAliasOf = "block";

// Datasets of a block beside its fields, and those of an id map.
constexpr const char* kIndex = "index";
constexpr const char* kId = "id";
constexpr const char* kName = "name";

// Datasets of a list field.
constexpr const char* kOffsets = "offsets";
constexpr const char* kValues = "values";

}  // namespace qelta::hdf5
