#pragma once

#include <FED_IdMapsPool.h>
#include <FrdSummary.h>
#include <QeltaBlockListing.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace qelta {

// What `qelta info` says, as an object.

/// Of a result file whose blocks would be these.
nlohmann::ordered_json ToObject(const std::string& name, const FrdFileSummary& summary,
                                const std::vector<QeltaBlockInfo>& blocks);

/// Of a database.
nlohmann::ordered_json ToObject(const std::string& name, const FED_IdMapsPool& maps,
                                const std::vector<QeltaBlockInfo>& blocks);

/// The names of the id types that have entities, and how many.
std::vector<std::pair<std::string, std::uint64_t>> CountIds(const FED_IdMapsPool& maps);

}  // namespace qelta
