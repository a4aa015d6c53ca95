#pragma once

#include <FED_DataDescriptor.h>
#include <FED_Database.h>
#include <FED_Exception.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qelta {

/// Numbers of many blocks in the order of something that varies among them.
struct QeltaSeries {
  std::string name;      ///< "DISP.y, node 9, LOADCASE 2"; unlike that of any other of a request
  std::string quantity;  ///< "Displacement"; empty for custom blocks
  std::string unit;      ///< "length"; empty when nothing is known of it
  std::string xName;     ///< "ITERATION", "time", "record index"
  std::string xUnit;
  bool hasWholeX = false;  ///< x counts something
  std::vector<double> x;   ///< ascending, but for columns of records
  std::vector<double> y;   ///< as many; NaN where a block has no such record
};

/// A record of blocks by its external id, its name or its index.
struct QeltaRecordChoice {
  enum class By { Id, Name, Index };
  By by = By::Index;
  std::int32_t number = 0;
  std::string name;
};

/// What stands for a block of several records.
enum class QeltaReduction { Max, Min, Mean, Norm };

struct QeltaSeriesRequest {
  /// Texts of QeltaQuantityText, at least one.
  std::vector<std::string> y;

  /// A field of the key; "time", "frequency" or "factor" of the frame that a block belongs to;
  /// "index", or a number of the same records: each block is then a series of its records.
  ///
  /// Empty: the first field in the order ITERATION, INCREMENT, STATE, LOADCASE, SUBSTEP and the
  /// rest that tells the blocks of each quantity apart; if none does, the first that varies; if
  /// none does, "index" if there are several records to show.
  std::string x;

  /// Each of them gives series of its own. Without any, a block of one record is that record.
  std::vector<QeltaRecordChoice> records;

  /// What stands for a block of several records when no record is chosen, the maximum as a rule.
  std::optional<QeltaReduction> of;

  /// One series for each value of this field.
  std::optional<FED_DataDescriptor::ResultIndex> by;
};

/// Called with the blocks that are done and those that there are; may throw to end the work.
using QeltaSeriesProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

/// The series that a request asks for, from the blocks of `keys`. Blocks of different kinds or
/// labels are never in one series; where several blocks would stand at the same x, the series is
/// split by the fields that tell them apart. A record that no block has gives a series of NaN.
///
/// A request that the blocks cannot fulfil (no block has the number, a name means several) is a
/// failure for which IsBadSeriesRequest holds. Reads every block once for each quantity, one at a
/// time.
std::vector<QeltaSeries> CollectSeries(const FED_Database& database,
                                       const std::vector<FED_DataDescriptor>& keys,
                                       const QeltaSeriesRequest& request,
                                       const QeltaSeriesProgress& progress = {});

/// Those of `all` keys that a database must hold for CollectSeries with the keys `selected`.
std::vector<FED_DataDescriptor> KeysForSeries(const std::vector<FED_DataDescriptor>& selected,
                                              const std::vector<FED_DataDescriptor>& all,
                                              const QeltaSeriesRequest& request);

/// Some value is a number.
bool HasValues(const QeltaSeries& series);

bool IsBadSeriesRequest(const FED_Exception& failure);

}  // namespace qelta
