#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "FED_DataDescriptor.h"
#include "FED_OnfCategoryId.h"
#include "QeltaExport.h"

/// Selects blocks by their descriptors: one match mode and one value for each of the fourteen
/// fields. A descriptor is selected when it passes the test of every field.
///
/// `MATCH_HIGHEST` and `MATCH_LOWEST` look at all descriptors that pass the other tests, so
/// matching has two steps: every candidate is fed to `Match` with one `MatchStateData`, whose
/// `GetMatched` then gives the selection. Ties are all kept. With such modes on several fields
/// the outcome depends on the order of feeding: a candidate raises the extremes of its fields one
/// after another, even when a later field rejects it.
///
/// A pattern is a plain value of 112 bytes with a fixed layout that Fortran programs share. Values
/// compare as signed 32-bit numbers; texts compare by pool id. Field arguments must lie in 0 to
/// 13; none is checked.
class QELTA_EXPORT FED_DataDescriptorPattern {
 public:
  enum MatchMode : std::int32_t {
    MATCH_EXACT,       ///< specified and equal to the value
    MATCH_ALL,         ///< no test
    MATCH_PRESENT,     ///< specified
    MATCH_MISSING,     ///< not specified
    MATCH_HIGHEST,     ///< specified, and the highest of all that pass the other tests
    MATCH_LOWEST,      ///< specified, and the lowest of all that pass the other tests
    MATCH_LESS_EQ,     ///< specified and at most the value
    MATCH_GREATER_EQ,  ///< specified and at least the value
    MATCH_CATEGORY     ///< ONF specified and in the category that the value numbers
  };

  /// The state of one selection: running extremes and provisional candidates. Fresh (or after
  /// `Reset`), fed any number of descriptors, read as often as wanted; feeding may go on after a
  /// read. One thread at a time.
  class QELTA_EXPORT MatchStateData {
   public:
    MatchStateData() { Reset(); }
    MatchStateData(const MatchStateData&) = default;
    MatchStateData& operator=(const MatchStateData&) = default;
    /// Moving leaves the source without candidates.
    MatchStateData(MatchStateData&& other) noexcept;
    MatchStateData& operator=(MatchStateData&& other) noexcept;

    /// Ready for another selection.
    void Reset();

    /// Replaces `out` by the selected descriptors, full copies in the order of feeding. A
    /// descriptor that was fed twice is selected twice.
    void GetMatched(std::vector<FED_DataDescriptor>& out) const;

   private:
    friend class FED_DataDescriptorPattern;

    struct Criterion {
      std::int32_t mode;  // MATCH_HIGHEST or MATCH_LOWEST
      std::uint64_t field;
      std::int32_t value;  // the extreme of the field right after the candidate was accepted
    };
    bool Holds(const Criterion& criterion) const;

    std::int32_t m_Maxima[FED_DataDescriptor::FIELD_COUNT];
    std::int32_t m_Minima[FED_DataDescriptor::FIELD_COUNT];
    std::vector<FED_DataDescriptor> m_Candidates;
    std::vector<std::vector<Criterion>> m_Criteria;
  };

  /// Matches everything.
  FED_DataDescriptorPattern();

  /// Matches the descriptors that specify the same fields with the same values.
  explicit FED_DataDescriptorPattern(const FED_DataDescriptor& descriptor);

  /// True when all modes and all values are equal, values that their modes ignore included.
  bool operator==(const FED_DataDescriptorPattern& other) const;
  bool operator!=(const FED_DataDescriptorPattern& other) const { return !(*this == other); }

  using ResultIndex = FED_DataDescriptor::ResultIndex;

  // Setters that need no value keep the value of the field as it stands.

  void SetMatchAll(ResultIndex i) { m_Entries[i].mode = MATCH_ALL; }
  void SetMatchExact(ResultIndex i, int value) { m_Entries[i] = {MATCH_EXACT, value}; }
  void SetMatchExact(ResultIndex i, const std::string& text);
  void SetMatchIfPresent(ResultIndex i, bool present) {
    m_Entries[i].mode = present ? MATCH_PRESENT : MATCH_MISSING;
  }
  void SetMatchHighest(ResultIndex i) { m_Entries[i].mode = MATCH_HIGHEST; }
  void SetMatchLowest(ResultIndex i) { m_Entries[i].mode = MATCH_LOWEST; }
  void SetMatchLessEqual(ResultIndex i, int value) { m_Entries[i] = {MATCH_LESS_EQ, value}; }
  void SetMatchGreaterEqual(ResultIndex i, int value) { m_Entries[i] = {MATCH_GREATER_EQ, value}; }
  /// Always on the ONF field.
  void SetMatchCategory(FED_OnfCategoryId category) {
    m_Entries[FED_DataDescriptor::ONF] = {MATCH_CATEGORY, category};
  }

  /// Puts the value of every field into `descriptor` and specifies exactly the fields whose mode
  /// is `MATCH_EXACT`; forgets the position that the descriptor remembered.
  void GetData(FED_DataDescriptor& descriptor) const;

  /// Feeds one descriptor. Fails when a category is asked for that the catalogue lacks.
  void Match(const FED_DataDescriptor& descriptor, MatchStateData& state) const;

  /// The selection among `descriptors`, in their order.
  std::vector<FED_DataDescriptor> Match(const std::vector<FED_DataDescriptor>& descriptors) const;

  /// All fourteen fields: "ITERATION:MATCH_EXACT(3) / ONF:MATCH_ALL / ...".
  std::string ToString() const;

 private:
  struct Entry {
    std::int32_t mode;
    std::int32_t value;
  };

  static const std::string FDP_NAME_ITEMS[9];

  bool PassesTests(const FED_DataDescriptor& descriptor) const;
  static bool PassesTest(const Entry& entry, ResultIndex i, const FED_DataDescriptor& descriptor);

  Entry m_Entries[FED_DataDescriptor::FIELD_COUNT];

  friend struct FED_DataDescriptorPatternLayout;
};

static_assert(sizeof(FED_DataDescriptorPattern) == 112);
static_assert(std::is_trivially_copyable_v<FED_DataDescriptorPattern>);
static_assert(std::is_standard_layout_v<FED_DataDescriptorPattern>);
