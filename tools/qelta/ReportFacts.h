#pragma once

#include <FED_Database.h>
#include <QeltaBlockListing.h>

#include <nlohmann/json.hpp>
#include <vector>

namespace qelta {

// What a report says beside the mesh, as its page expects it.

/// Fields of keys, kinds and categories: what conditions on blocks are made of.
nlohmann::ordered_json ReportCatalogue();

/// A row for each block: values of its key (null where it has none), kind, records, bytes, format.
nlohmann::ordered_json ReportBlocks(const std::vector<QeltaBlockInfo>& blocks);

/// Tables about the blocks as a whole, and about the ids of the database.
nlohmann::ordered_json ReportOverview(const std::vector<QeltaBlockInfo>& blocks,
                                      const FED_IdMapsPool& maps);

/// Numbers of blocks of one record in the order of their steps, and numbers of records that belong
/// to nothing in the order of the records.
nlohmann::ordered_json ReportSeries(const FED_Database& database,
                                    const std::vector<QeltaBlockInfo>& blocks);

}  // namespace qelta
