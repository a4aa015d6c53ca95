// Recomputes a run of the topology optimisation and compares it line by line with the table on
// standard input: iteration, compliance, volume, change. Nothing is shared with the Fortran
// program: the element stiffness is the closed form of textbooks, the equations are dense and
// solved by elimination with pivoting, nodes run row by row, the filter looks at all pairs of
// elements.
//
//     topology_reference NX NY < table

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Vector = std::vector<double>;
using Index = std::size_t;

constexpr double kPoisson = 0.3, kFraction = 0.5, kPenalty = 3, kRadius = 1.5, kLowest = 1e-9;

struct Grid {
  Index nx, ny;
  Index Dofs() const { return 2 * (nx + 1) * (ny + 1); }
  Index Node(Index column, Index row) const { return row * (nx + 1) + column; }
  Index LoadedDof() const { return 2 * Node(nx, ny / 2) + 1; }
};

// Corners counterclockwise from the lower left, each with its two directions.
std::vector<Index> ElementDofs(const Grid& grid, Index column, Index row) {
  std::vector<Index> dofs;
  for (const Index node : {grid.Node(column, row), grid.Node(column + 1, row),
                           grid.Node(column + 1, row + 1), grid.Node(column, row + 1)}) {
    dofs.push_back(2 * node);
    dofs.push_back(2 * node + 1);
  }
  return dofs;
}

// The square plane stress element of modulus 1 in closed form.
double Stiffness(Index i, Index j) {
  static const double k[8] = {1. / 2 - kPoisson / 6,
                              1. / 8 + kPoisson / 8,
                              -1. / 4 - kPoisson / 12,
                              -1. / 8 + 3 * kPoisson / 8,
                              -1. / 4 + kPoisson / 12,
                              -1. / 8 - kPoisson / 8,
                              kPoisson / 6,
                              1. / 8 - 3 * kPoisson / 8};
  static const Index place[8][8] = {{0, 1, 2, 3, 4, 5, 6, 7}, {1, 0, 7, 6, 5, 4, 3, 2},
                                    {2, 7, 0, 5, 6, 3, 4, 1}, {3, 6, 5, 0, 7, 2, 1, 4},
                                    {4, 5, 6, 7, 0, 1, 2, 3}, {5, 4, 3, 2, 1, 0, 7, 6},
                                    {6, 3, 4, 1, 2, 7, 0, 5}, {7, 2, 1, 4, 3, 6, 5, 0}};
  return k[place[i][j]] / (1 - kPoisson * kPoisson);
}

void Eliminate(std::vector<Vector>& matrix, Vector& rhs) {
  const Index n = rhs.size();
  for (Index j = 0; j < n; ++j) {
    Index pivot = j;
    for (Index i = j + 1; i < n; ++i) {
      if (std::fabs(matrix[i][j]) > std::fabs(matrix[pivot][j])) pivot = i;
    }
    std::swap(matrix[j], matrix[pivot]);
    std::swap(rhs[j], rhs[pivot]);
    for (Index i = j + 1; i < n; ++i) {
      const double factor = matrix[i][j] / matrix[j][j];
      if (factor == 0) continue;
      for (Index k = j; k < n; ++k) matrix[i][k] -= factor * matrix[j][k];
      rhs[i] -= factor * rhs[j];
    }
  }
  for (Index j = n; j-- > 0;) {
    for (Index k = j + 1; k < n; ++k) rhs[j] -= matrix[j][k] * rhs[k];
    rhs[j] /= matrix[j][j];
  }
}

double ModulusOf(double density) { return kLowest + std::pow(density, kPenalty) * (1 - kLowest); }

// Densities stand row by row, as elements do everywhere here.
Vector Displace(const Grid& grid, const Vector& density) {
  std::vector<Vector> matrix(grid.Dofs(), Vector(grid.Dofs()));
  Vector rhs(grid.Dofs());
  rhs[grid.LoadedDof()] = -1;
  for (Index e = 0; e < density.size(); ++e) {
    const std::vector<Index> dofs = ElementDofs(grid, e % grid.nx, e / grid.nx);
    for (Index i = 0; i < 8; ++i) {
      for (Index j = 0; j < 8; ++j) {
        matrix[dofs[i]][dofs[j]] += ModulusOf(density[e]) * Stiffness(i, j);
      }
    }
  }
  for (Index row = 0; row <= grid.ny; ++row) {
    for (const Index dof : {2 * grid.Node(0, row), 2 * grid.Node(0, row) + 1}) {
      std::fill(matrix[dof].begin(), matrix[dof].end(), 0);
      matrix[dof][dof] = 1;
    }
  }
  Eliminate(matrix, rhs);
  return rhs;
}

Vector Sensitivities(const Grid& grid, const Vector& density, const Vector& displacement) {
  Vector result(density.size());
  for (Index e = 0; e < density.size(); ++e) {
    const std::vector<Index> dofs = ElementDofs(grid, e % grid.nx, e / grid.nx);
    double energy = 0;
    for (Index i = 0; i < 8; ++i) {
      for (Index j = 0; j < 8; ++j) {
        energy += displacement[dofs[i]] * Stiffness(i, j) * displacement[dofs[j]];
      }
    }
    result[e] = -kPenalty * std::pow(density[e], kPenalty - 1) * (1 - kLowest) * energy;
  }
  return result;
}

Vector Filtered(const Grid& grid, const Vector& density, const Vector& sensitivity) {
  Vector result(density.size());
  for (Index e = 0; e < density.size(); ++e) {
    double sum = 0, total = 0;
    for (Index f = 0; f < density.size(); ++f) {
      const double dx = static_cast<double>(e % grid.nx) - static_cast<double>(f % grid.nx);
      const double dy = static_cast<double>(e / grid.nx) - static_cast<double>(f / grid.nx);
      const double weight = std::max(0., kRadius - std::sqrt(dx * dx + dy * dy));
      total += weight;
      sum += weight * density[f] * sensitivity[f];
    }
    result[e] = sum / (total * std::max(0.001, density[e]));
  }
  return result;
}

double Mean(const Vector& values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

// The optimality criterion for a given logarithm of the volume's multiplier.
Vector Updated(const Vector& density, const Vector& sensitivity, double logMultiplier) {
  Vector next(density.size());
  for (Index e = 0; e < density.size(); ++e) {
    const double wanted = density[e] * std::sqrt(-sensitivity[e] / std::exp(logMultiplier));
    next[e] = std::clamp(wanted, std::max(0.001, density[e] - 0.2), std::min(1., density[e] + 0.2));
  }
  return next;
}

Vector NextDensity(const Vector& density, const Vector& sensitivity) {
  double low = -30, high = 30;
  for (int i = 0; i < 100; ++i) {
    const double middle = (low + high) / 2;
    (Mean(Updated(density, sensitivity, middle)) > kFraction ? low : high) = middle;
  }
  return Updated(density, sensitivity, high);
}

bool Near(const char* what, int iteration, double found, double expected, double tolerance) {
  if (std::fabs(found - expected) <= tolerance) return true;
  std::printf("iteration %d: %s is %.12g, expected %.12g\n", iteration, what, found, expected);
  return false;
}

// A slender solid beam bends as Timoshenko's theory says; four layers of these elements are a few
// percent too stiff in bending.
bool SolvesABeam() {
  const Grid grid{40, 4};
  const double deflection = -Displace(grid, Vector(160, 1.))[grid.LoadedDof()];
  const double length = 40, height = 4, shearModulus = 1 / (2 * (1 + kPoisson));
  const double bending = 4 * std::pow(length / height, 3);
  const double shear = 6. / 5 * length / (shearModulus * height);
  return Near("the beam's deflection", 0, deflection, bending + shear, 0.05 * bending);
}

// At least five lines of numbers, from iteration 1.
bool AgreesWithTable(const Grid& grid, std::istream& table) {
  Vector density(grid.nx * grid.ny, kFraction);
  bool agrees = true;
  int expectedIteration = 1;
  for (std::string line; std::getline(table, line);) {
    std::istringstream words(line);
    int iteration = 0;
    double compliance = 0, volume = 0, change = 0;
    if (!(words >> iteration >> compliance >> volume >> change)) continue;
    const Vector displacement = Displace(grid, density);
    const double expected = -displacement[grid.LoadedDof()];
    const Vector next =
        NextDensity(density, Filtered(grid, density, Sensitivities(grid, density, displacement)));
    double expectedChange = 0;
    for (Index e = 0; e < next.size(); ++e) {
      expectedChange = std::max(expectedChange, std::fabs(next[e] - density[e]));
    }
    agrees = iteration == expectedIteration++ &&
             Near("compliance", iteration, compliance, expected, 1e-7 * expected) &&
             Near("volume", iteration, volume, kFraction, 1e-4) &&
             Near("change", iteration, change, expectedChange, 1e-4) && agrees;
    density = next;
  }
  return agrees && expectedIteration > 5;
}

}  // namespace

int main(int, char** argv) {
  const Grid grid{std::stoul(argv[1]), std::stoul(argv[2])};
  return SolvesABeam() && AgreesWithTable(grid, std::cin) ? EXIT_SUCCESS : EXIT_FAILURE;
}
