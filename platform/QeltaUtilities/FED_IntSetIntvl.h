#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <type_traits>
#include <vector>

/// A set of integers, kept as ascending closed intervals that neither overlap nor touch.
///
/// A range of a million members costs as much as a single one. Every value of T may be a member,
/// the least and the greatest included. Iterators and references to intervals hold until the next
/// change.
template <class T>
class FED_IntSetIntvl {
  static_assert(std::is_integral_v<T> && !std::is_same_v<T, bool>, "the members are integers");

 public:
  /// The members lo, lo + 1, ..., hi; lo <= hi.
  struct Interval {
    T lo;
    T hi;

    friend bool operator==(const Interval& a, const Interval& b) {
      return a.lo == b.lo && a.hi == b.hi;
    }
    friend bool operator!=(const Interval& a, const Interval& b) { return !(a == b); }
  };

  using const_iterator = typename std::vector<Interval>::const_iterator;

  /// Adds one member. Cost as for an interval.
  void Insert(T value) { Insert(value, value); }

  /// Adds lo, ..., hi; does nothing when lo > hi. Constant cost when lo is not below the last
  /// interval's first member, else logarithmic to find the place and linear in the intervals
  /// behind it.
  void Insert(T lo, T hi) {
    if (lo > hi) return;
    if (m_Intervals.empty() || StartsApartAbove(m_Intervals.back(), lo)) {
      m_Intervals.push_back({lo, hi});
    } else if (lo >= m_Intervals.back().lo) {
      m_Intervals.back().hi = std::max(m_Intervals.back().hi, hi);
    } else {
      Merge(lo, hi);
    }
  }

  /// Logarithmic in the number of intervals.
  bool Contains(T value) const {
    const auto candidate =
        std::lower_bound(m_Intervals.begin(), m_Intervals.end(), value,
                         [](const Interval& interval, T v) { return interval.hi < v; });
    return candidate != m_Intervals.end() && candidate->lo <= value;
  }

  /// Number of members; linear in the number of intervals. The one set that has 2^64 of them, all
  /// values of a 64-bit type, answers 2^64 - 1.
  std::uint64_t Size() const {
    std::uint64_t size = 0;
    for (const Interval& interval : m_Intervals) {
      size += static_cast<std::uint64_t>(interval.hi) - static_cast<std::uint64_t>(interval.lo) + 1;
    }
    return size == 0 && !Empty() ? std::numeric_limits<std::uint64_t>::max() : size;
  }

  std::size_t NumIntervals() const { return m_Intervals.size(); }
  bool Empty() const { return m_Intervals.empty(); }
  void Clear() { m_Intervals.clear(); }

  /// The intervals in ascending order.
  const_iterator begin() const { return m_Intervals.begin(); }
  const_iterator end() const { return m_Intervals.end(); }

  friend bool operator==(const FED_IntSetIntvl& a, const FED_IntSetIntvl& b) {
    return a.m_Intervals == b.m_Intervals;
  }
  friend bool operator!=(const FED_IntSetIntvl& a, const FED_IntSetIntvl& b) { return !(a == b); }

 private:
  // hi + 1 is computed only below another value of T, so it cannot overflow.
  static bool StartsApartAbove(const Interval& interval, T value) {
    return interval.hi < value && interval.hi + 1 < value;
  }

  void Merge(T lo, T hi) {
    const auto first = std::lower_bound(
        m_Intervals.begin(), m_Intervals.end(), lo,
        [](const Interval& interval, T v) { return StartsApartAbove(interval, v); });
    const auto last =
        std::upper_bound(first, m_Intervals.end(), hi, [](T v, const Interval& interval) {
          return StartsApartAbove({v, v}, interval.lo);
        });
    if (first == last) {
      m_Intervals.insert(first, {lo, hi});
      return;
    }
    *first = {std::min(lo, first->lo), std::max(hi, std::prev(last)->hi)};
    m_Intervals.erase(std::next(first), last);
  }

  std::vector<Interval> m_Intervals;
};
