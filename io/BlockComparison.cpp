#include "BlockComparison.h"

#include <QeltaBulkAccess.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace qelta {
namespace {

// What is no number, or infinite on one side, is as far away as can be.
double DistanceOf(double a, double b) {
  const double distance = std::abs(a - b);
  return std::isnan(distance) ? std::numeric_limits<double>::infinity() : distance;
}

double RelativeDistanceOf(double a, double b) {
  const double distance = DistanceOf(a, b);
  if (std::isinf(distance)) return distance;
  return distance / std::max(std::abs(a), std::abs(b));
}

std::string Quoted(const QeltaCell& cell) {
  const std::string text = ToText(cell, kAllDigits - 2);
  return std::holds_alternative<std::string>(cell) ? "'" + text + "'" : text;
}

std::uint64_t CountRecords(const FED_DataBlock& block) {
  FED_IntSetIntvl<int> runs;
  QeltaBulkAccess::PresentRuns(block, runs);
  return runs.Size();
}

}  // namespace

bool QeltaTolerances::AreSame(double a, double b) const {
  if (a == b || (std::isnan(a) && std::isnan(b))) return true;
  if (!std::isfinite(a) || !std::isfinite(b)) return false;
  const double distance = std::abs(a - b);
  return distance <= absolute || distance <= relative * std::max(std::abs(a), std::abs(b));
}

BlockComparison::BlockComparison(const FED_DataBlock& a, const FED_IdMapsPool& mapsOfA,
                                 const FED_DataBlock& b, const FED_IdMapsPool& mapsOfB,
                                 const QeltaTolerances& tolerances)
    : m_A(a),
      m_B(b),
      m_Tolerances(tolerances),
      m_IdType(RecordIdTypeOf(a)),
      m_MapOfA(mapsOfA.GetMap(m_IdType)),
      m_MapOfB(mapsOfB.GetMap(m_IdType)),
      m_RowsOfA(a, mapsOfA),
      m_RowsOfB(b, mapsOfB),
      m_Titles(m_RowsOfA.Titles()),
      m_Numbers(NumbersOf(a)),
      m_Record(a.GetRecordSize()) {
  for (std::size_t i = 0; i < m_Titles.size(); ++i) {
    const auto isNumber = std::any_of(m_Numbers.begin(), m_Numbers.end(),
                                      [&](const auto& one) { return one.title == m_Titles[i]; });
    if (!isNumber) m_Others.push_back(i);
  }
}

QeltaBlockDifference BlockComparison::Compare() {
  if (m_A.GetFormat() != m_B.GetFormat() || m_IdType != RecordIdTypeOf(m_B)) {
    m_Result.state = QeltaBlockDifference::DIFFERENT;
    m_Result.worst = "record formats " + m_A.GetFormat() + " and " + m_B.GetFormat();
    return m_Result;
  }
  VisitRecords(m_A, [this](std::size_t first, std::size_t count, const unsigned char* records) {
    CompareRecords(first, count, records);
  });
  m_Result.onlyInSecond = CountRecords(m_B) - m_Result.records;
  const bool isSame =
      m_Result.values == 0 && m_Result.onlyInFirst == 0 && m_Result.onlyInSecond == 0;
  m_Result.state = isSame ? QeltaBlockDifference::SAME : QeltaBlockDifference::DIFFERENT;
  if (!isSame && m_Result.worst.empty()) m_Result.worst = "records are missing";
  return m_Result;
}

// The record of the same entity in the other block.
std::optional<std::size_t> BlockComparison::PartnerOf(std::size_t index) const {
  auto partner = static_cast<std::int64_t>(index);
  if (m_IdType != ID_TYPE_RECORD_INDEX && m_MapOfA.ContainsIndex(partner)) {
    if (FED_ID_TYPE_INFO[m_IdType].named != 0 && m_MapOfA.HasNameAt(partner)) {
      std::string name;
      m_MapOfA.NameOfIndex(partner, name);
      if (!m_MapOfB.ContainsName(name)) return std::nullopt;
      partner = m_MapOfB.IndexOfName(name);
    } else {
      const std::int32_t id = m_MapOfA.IdOfIndex(partner);
      if (!m_MapOfB.ContainsId(id)) return std::nullopt;
      partner = m_MapOfB.IndexOfId(id);
    }
  }
  const auto place = static_cast<std::size_t>(partner);
  if (!m_B.HasRecord(place)) return std::nullopt;
  return place;
}

void BlockComparison::CompareRecords(std::size_t first, std::size_t count,
                                     const unsigned char* records) {
  for (std::size_t i = 0; i < count; ++i, records += m_Record.size()) {
    const std::optional<std::size_t> partner = PartnerOf(first + i);
    if (!partner) {
      ++m_Result.onlyInFirst;
      continue;
    }
    ++m_Result.records;
    QeltaBulkAccess::ReadRun(m_B, *partner, 1, m_Record.data());
    if (!m_Others.empty()) CompareOthers(first + i, *partner);
    if (!m_Numbers.empty() && std::memcmp(records, m_Record.data(), m_Record.size()) != 0) {
      CompareNumbers(first + i, records, m_Record.data());
    }
  }
}

void BlockComparison::CompareNumbers(std::size_t index, const unsigned char* a,
                                     const unsigned char* b) {
  for (const QeltaComponent& number : m_Numbers) {
    const double x = number.Read(a), y = number.Read(b);
    if (m_Tolerances.AreSame(x, y)) continue;
    const double distance = DistanceOf(x, y);
    if (m_Result.worst.empty() || distance > m_Result.greatest) {
      m_Result.greatest = distance;
      Note(index, number.title, x, y);
    }
    m_Result.greatestRelative = std::max(m_Result.greatestRelative, RelativeDistanceOf(x, y));
    ++m_Result.values;
  }
}

void BlockComparison::CompareOthers(std::size_t index, std::size_t partner) {
  const std::vector<QeltaCell> a = m_RowsOfA.Cells(index);
  const std::vector<QeltaCell> b = m_RowsOfB.Cells(partner);
  for (const std::size_t i : m_Others) {
    if (AreSame(a[i], b[i])) continue;
    if (m_Result.worst.empty()) Note(index, m_Titles[i], a[i], b[i]);
    ++m_Result.values;
  }
}

bool BlockComparison::AreSame(const QeltaCell& a, const QeltaCell& b) const {
  const auto* const listOfA = std::get_if<std::vector<QeltaScalar>>(&a);
  const auto* const listOfB = std::get_if<std::vector<QeltaScalar>>(&b);
  if (listOfA == nullptr || listOfB == nullptr) return a == b;
  return std::equal(listOfA->begin(), listOfA->end(), listOfB->begin(), listOfB->end(),
                    [this](const QeltaScalar& x, const QeltaScalar& y) {
                      const auto* const number = std::get_if<double>(&x);
                      const auto* const other = std::get_if<double>(&y);
                      if (number == nullptr || other == nullptr) return x == y;
                      return m_Tolerances.AreSame(*number, *other);
                    });
}

void BlockComparison::Note(std::size_t index, const std::string& title, const QeltaCell& a,
                           const QeltaCell& b) {
  m_Result.worst = m_RowsOfA.KeyTitle() + " " + ToText(m_RowsOfA.Key(index), kAllDigits) + ", " +
                   title + ": " + Quoted(a) + " and " + Quoted(b);
}

}  // namespace qelta
