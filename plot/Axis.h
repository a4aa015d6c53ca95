#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qelta {

/// The scale of one axis: its range, and the ticks that people like to read.
class Axis {
 public:
  enum class Notation { Rich, Plain };  ///< 10⁻³ in Unicode, or 1e-3 in ASCII

  struct Options {
    bool isLog = false;
    bool isWhole = false;        ///< no ticks between integers
    bool endsAtTicks = false;    ///< the range is widened to ticks, else by a little
    std::size_t mostTicks = 10;  ///< at least 2
    Notation notation = Notation::Rich;
  };

  struct Tick {
    double value;
    std::string label;
  };

  /// For finite values from `lowest` to `highest`, above 0 on a logarithmic axis. A range without
  /// extent is widened around its value.
  Axis(double lowest, double highest, const Options& options);

  /// Where a value stands: 0 at the low end, 1 at the high end, beyond these outside of it.
  double PlaceOf(double value) const;

  double GetLow() const { return m_Low; }
  double GetHigh() const { return m_High; }

  /// In steps of 1, 2 or 5 times a power of ten; on a logarithmic axis over more than a decade at
  /// powers of ten.
  const std::vector<Tick>& GetTicks() const { return m_Ticks; }
  /// Between them, on a logarithmic axis.
  const std::vector<double>& GetMinorTicks() const { return m_MinorTicks; }

  /// What the labels are to be multiplied with, "×10³" or "x1e3"; empty for 1.
  const std::string& GetMultiplier() const { return m_Multiplier; }

 private:
  void WidenConstant();
  void WidenTight();
  void MakeLinear();
  void MakeDecades();
  std::string PowerText(int exponent) const;
  double Scaled(double value) const;

  Options m_Options;
  double m_Low;
  double m_High;
  std::vector<Tick> m_Ticks;
  std::vector<double> m_MinorTicks;
  std::string m_Multiplier;
};

}  // namespace qelta
