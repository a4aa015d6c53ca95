#include "Axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace qelta {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max() / 8;
constexpr double kTiny = std::numeric_limits<double>::min() * 1e6;

// pow is not exact everywhere.
double PowerOfTen(int exponent) {
  return std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
}

// The next of 1, 2, 5, 10, 20 ... that is not less.
double NiceStep(double least) {
  const double power = PowerOfTen(static_cast<int>(std::floor(std::log10(least))));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= least * (1 - 1e-9)) return factor * power;
  }
  return 10 * power;
}

int ExponentOf(double value) { return static_cast<int>(std::floor(std::log10(value) + 1e-9)); }

// Engineers' powers of ten for large and small numbers, 0 for those in between.
int CommonExponent(double largest) {
  const int exponent = largest > 0 ? ExponentOf(largest) : 0;
  if (-3 < exponent && exponent < 5) return 0;
  return static_cast<int>(std::floor(exponent / 3.0)) * 3;
}

std::string Superscript(int number) {
  static const char* const kDigits[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
  std::string text;
  for (const char c : std::to_string(number)) text += c == '-' ? "⁻" : kDigits[c - '0'];
  return text;
}

std::string Fixed(double value, int decimals) {
  char text[400];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

}  // namespace

Axis::Axis(double lowest, double highest, const Options& options)
    : m_Options(options),
      m_Low(std::clamp(lowest, -kLargest, kLargest)),
      m_High(std::clamp(highest, -kLargest, kLargest)) {
  if (options.isLog) m_Low = std::max(m_Low, kTiny);
  if (options.isLog) m_High = std::max(m_High, m_Low);
  WidenConstant();
  if (options.isLog && std::log10(m_High) - std::log10(m_Low) > 1) {
    MakeDecades();
  } else {
    MakeLinear();
  }
}

// A logarithmic scale measures exponents.
double Axis::Scaled(double value) const { return m_Options.isLog ? std::log10(value) : value; }

double Axis::PlaceOf(double value) const {
  const double low = Scaled(m_Low), high = Scaled(m_High);
  return (Scaled(value) - low) / (high - low);
}

void Axis::WidenConstant() {
  const double size = std::max(std::abs(m_Low), std::abs(m_High));
  if (m_High - m_Low > std::max(size * 1e-12, kTiny)) return;
  if (m_Options.isLog) {
    m_Low /= 2;
    m_High *= 2;
  } else {
    const double room = m_Options.isWhole || size < kTiny ? 1 : size / 10;
    m_Low -= room;
    m_High += room;
  }
}

// Lines and markers do not touch the frame.
void Axis::WidenTight() {
  constexpr double kRoom = 0.02;
  if (m_Options.isLog) {
    const double factor = std::pow(m_High / m_Low, kRoom);
    m_Low /= factor;
    m_High *= factor;
  } else {
    const double room = (m_High - m_Low) * kRoom;
    m_Low -= room;
    m_High += room;
  }
}

void Axis::MakeLinear() {
  double step = NiceStep((m_High - m_Low) / static_cast<double>(m_Options.mostTicks));
  if (m_Options.isWhole) step = std::max(step, 1.0);
  if (m_Options.endsAtTicks && !m_Options.isLog) {
    m_Low = std::floor(m_Low / step + 1e-9) * step;
    m_High = std::ceil(m_High / step - 1e-9) * step;
  } else {
    WidenTight();
  }
  const int exponent = CommonExponent(std::max(std::abs(m_Low), std::abs(m_High)));
  if (exponent != 0) m_Multiplier = PowerText(exponent);
  const double unit = PowerOfTen(exponent);
  const int decimals = std::max(0, exponent - ExponentOf(step));
  const double first = std::ceil(m_Low / step - 1e-9);
  const double count = std::floor(m_High / step + 1e-9) - first;
  for (int i = 0; i <= count; ++i) {
    const double value = (first + i) * step + 0.0;
    m_Ticks.push_back({value, Fixed(value / unit + 0.0, decimals)});
  }
}

void Axis::MakeDecades() {
  const auto floorOf = [](double v) { return static_cast<int>(std::floor(std::log10(v) + 1e-9)); };
  const auto ceilOf = [](double v) { return static_cast<int>(std::ceil(std::log10(v) - 1e-9)); };
  if (m_Options.endsAtTicks) {
    m_Low = PowerOfTen(floorOf(m_Low));
    m_High = PowerOfTen(ceilOf(m_High));
  } else {
    WidenTight();
  }
  const int first = ceilOf(m_Low), last = floorOf(m_High);
  const int stride = (last - first) / static_cast<int>(m_Options.mostTicks) + 1;
  const bool isPlain = -4 < first && last < 5;
  for (int exponent = first; exponent <= last; exponent += stride) {
    const double value = PowerOfTen(exponent);
    const std::string power = PowerText(exponent);
    m_Ticks.push_back(
        {value, isPlain ? Fixed(value, std::max(0, -exponent)) : power.substr(power.find('1'))});
  }
  // Also below the first power and above the last one.
  for (int exponent = first - 1; exponent <= last; ++exponent) {
    for (int factor = 2; factor <= (stride == 1 ? 9 : 0); ++factor) {
      const double value = factor * PowerOfTen(exponent);
      if (m_Low <= value && value <= m_High) m_MinorTicks.push_back(value);
    }
  }
}

std::string Axis::PowerText(int exponent) const {
  if (m_Options.notation == Notation::Plain) return "x1e" + std::to_string(exponent);
  return "×10" + Superscript(exponent);
}

}  // namespace qelta
