#pragma once

#include <array>

namespace qelta {

/// The equivalent stress after von Mises of a symmetric tensor given as xx, yy, zz, xy, yz, zx:
///     sqrt(((xx-yy)^2 + (yy-zz)^2 + (zz-xx)^2) / 2 + 3 (xy^2 + yz^2 + zx^2))
double VonMises(const double* tensor);

/// Its eigenvalues, the greatest first; NaN when a component is not finite.
std::array<double, 3> PrincipalValues(const double* tensor);

}  // namespace qelta
