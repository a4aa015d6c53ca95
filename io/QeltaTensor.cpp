#include "QeltaTensor.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace qelta {
namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

// Turns the plane of the axes p and q so that the element between them is gone.
void Rotate(Matrix& a, std::size_t p, std::size_t q) {
  if (a[p][q] == 0) return;
  const double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
  const double t = std::copysign(1.0, theta) / (std::abs(theta) + std::hypot(theta, 1.0));
  const double c = 1 / std::hypot(t, 1.0);
  const double s = t * c;
  const std::size_t r = 3 - p - q;
  const double app = a[p][p] - t * a[p][q], aqq = a[q][q] + t * a[p][q];
  const double arp = c * a[r][p] - s * a[r][q], arq = s * a[r][p] + c * a[r][q];
  a[p][p] = app;
  a[q][q] = aqq;
  a[p][q] = a[q][p] = 0;
  a[r][p] = a[p][r] = arp;
  a[r][q] = a[q][r] = arq;
}

}  // namespace

double VonMises(const double* tensor) {
  const double a = tensor[0] - tensor[1];
  const double b = tensor[1] - tensor[2];
  const double c = tensor[2] - tensor[0];
  const double shear = tensor[3] * tensor[3] + tensor[4] * tensor[4] + tensor[5] * tensor[5];
  return std::sqrt((a * a + b * b + c * c) / 2 + 3 * shear);
}

std::array<double, 3> PrincipalValues(const double* tensor) {
  double largest = 0;
  for (int i = 0; i < 6; ++i) {
    if (!std::isfinite(tensor[i])) {
      constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
      return {kNaN, kNaN, kNaN};
    }
    largest = std::max(largest, std::abs(tensor[i]));
  }
  Matrix a = {{{tensor[0], tensor[3], tensor[5]},
               {tensor[3], tensor[1], tensor[4]},
               {tensor[5], tensor[4], tensor[2]}}};
  // Converges quadratically: a handful of sweeps reach the last digit.
  constexpr int kMaxSweeps = 20;
  for (int sweep = 0; sweep < kMaxSweeps; ++sweep) {
    const double rest = std::abs(a[0][1]) + std::abs(a[0][2]) + std::abs(a[1][2]);
    if (rest <= largest * std::numeric_limits<double>::epsilon() / 16) break;
    Rotate(a, 0, 1);
    Rotate(a, 0, 2);
    Rotate(a, 1, 2);
  }
  std::array<double, 3> values = {a[0][0], a[1][1], a[2][2]};
  std::sort(values.begin(), values.end(), std::greater<>());
  return values;
}

}  // namespace qelta
