#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>

#include "NumberColumn.h"
#include "NumberRun.h"
#include "NumberRuns.h"
#include "NumberSlots.h"

namespace qelta {

// A translation of 32-bit numbers in the form that suits them: runs while these are few for their
// numbers, else an array where the numbers lie close together, else a hash table. It grows by
// building its next form beside the present one, so that a failed growth leaves all as it was.
class NumberMap {
 public:
  // What is in a map, or is going to be added.
  struct Extent {
    std::uint32_t low;
    std::uint32_t high;
    std::size_t count;
    std::size_t runs;  // at most
  };

  std::size_t GetCount() const { return m_Count; }
  // The least and the greatest number that is known; meaningless in an empty map.
  std::uint32_t GetLow() const { return m_Low; }
  std::uint32_t GetHigh() const { return m_High; }

  std::optional<std::uint32_t> Find(std::uint32_t from) const;
  // What to prefetch before a search for `from`, or null.
  const void* AddressOf(std::uint32_t from) const {
    const auto* slots = std::get_if<NumberSlots>(&m_Form);
    return slots == nullptr ? nullptr : slots->AddressOf(from);
  }
  bool HasAnyIn(std::uint32_t first, std::uint32_t length) const;

  // Calls visit(run) for all that is known, in no order.
  template <class Visitor>
  void ForEach(Visitor visit) const {
    Visit(m_Form, [&visit](const auto& form) { form.ForEach(visit); });
  }

  // Makes exactly the room that `added` needs.
  void Reserve(const Extent& added);
  // Makes room for the run and, so that this is rare, for more.
  void MakeRoomFor(const NumberRun& run);
  // Needs room for the run; nothing in it may be known.
  void Insert(const NumberRun& run) noexcept;

 private:
  using Form = std::variant<NumberRuns, NumberColumn, NumberSlots>;

  // As std::visit, but without an exception for the form that is none: no change of form can fail.
  template <class AnyForm, class Visitor>
  static auto Visit(AnyForm& form, Visitor visitor) {
    if (auto* runs = std::get_if<NumberRuns>(&form)) return visitor(*runs);
    if (auto* column = std::get_if<NumberColumn>(&form)) return visitor(*column);
    return visitor(*std::get_if<NumberSlots>(&form));
  }

  bool HasRoomFor(const NumberRun& run) const;
  bool KeepsRuns(const Extent& extent) const;
  Extent ExtentWith(const Extent& added) const;
  Extent Stretch(const Extent& extent) const;
  // The form that suits `extent`, made as large as `room`.
  Form MakeForm(const Extent& extent, const Extent& room) const;
  void ChangeTo(Form form) noexcept;

  Form m_Form;
  std::size_t m_Count = 0;
  std::uint32_t m_Low = 0;
  std::uint32_t m_High = 0;
};

// Inline, for the searches.
inline std::optional<std::uint32_t> NumberMap::Find(std::uint32_t from) const {
  return Visit(m_Form, [from](const auto& form) { return form.Find(from); });
}

}  // namespace qelta
