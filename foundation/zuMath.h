// zuMath.h - functions of numbers that never fail. Group: maths.
#pragma once

#include <cmath>
#include <limits>

#include "foundation/zuExport.h"

class ZuDoubleDouble;

namespace ZuMath {

/// The square root; 0 for a negative argument, which stands for a 0 spoilt by rounding. nan stays nan.
inline double sqrt(double x) { return x <= 0.0 ? 0.0 : std::sqrt(x); }

/// The angle in [-pi/2, pi/2] (rad) whose sine is x; an argument outside [-1, 1] counts as the nearer end. nan stays
/// nan.
inline double asin(double x) { return std::asin(x < -1.0 ? -1.0 : x > 1.0 ? 1.0 : x); }

/// A divisor that never fails: x when it is at least the smallest positive normal double (about 2.2e-308), else that
/// number; so also for negative numbers and nan.
inline double nonZeroPos(double const& x) {
  constexpr double theSmallestNormal = std::numeric_limits<double>::min();
  return x >= theSmallestNormal ? x : theSmallestNormal;
}

/// The roots of x^3 + c2 x^2 + c1 x + c0.
///
/// Three real roots: in descending order, and both imaginary parts are 0. One real root: it is root0; root1 and root2
/// are the common real part of the conjugate pair, imaginary1 > 0 and imaginary2 = -imaginary1. A coefficient that is
/// not finite: a message, and all five are 0.
///
/// The roots are those of the given coefficients taken as exact, to about an ulp of the largest root, repeated ones
/// included; isolated small roots to about an ulp of their own unless they are below 1e-90 of the largest. A root of
/// multiplicity two or three that the coefficients hold only by rounding comes out split, by about 1e-8 or 1e-5 of its
/// size: a sensitivity of the coefficients that no solver can mend. For eigenvalues use `symmetricEigenvalues`.
///
/// Method: the shifted cubic z^3 + p z + q, z = 3 x + c2, formed in twice the precision; its outermost root by
/// Viete's or Cardano's formula (Press et al., "Numerical Recipes", section 5.6) and Newton steps in twice the
/// precision: it is never close to another root; the other two from the quadratic that remains. Where they are much
/// smaller, that quadratic comes from the unshifted cubic, divided from the constant term upwards (W. Kahan, "To solve
/// a real cubic equation", 1986). Under 1 us.
ZU_API void cubicRoots(double const& c2, double const& c1, double const& c0, double& root0, double& root1,
                       double& root2, double& imaginary1, double& imaginary2);

/// The eigenvalues of the symmetric matrix ((a00 a01 a02) (a01 a11 a12) (a02 a12 a22)), in descending order, each
/// within a few ulps of the largest magnitude, repeated ones included. Two that differ by less than about an ulp of it
/// come out equal. An element that is not finite: a message, and all are 0.
///
/// Method: the characteristic polynomial of 3 A - trace(A), formed and solved in twice the precision as in
/// `cubicRoots`. The shift by the mean eigenvalue before the coefficients are formed is what saves repeated values.
ZU_API void symmetricEigenvalues(double a00, double a01, double a02, double a11, double a12, double a22,
                                 double& largest, double& middle, double& smallest);
/// The same in twice the precision: values that are at least 2^-50 of the largest apart are within
/// 2^-98 (largest / distance) of it, closer ones within some 2^-52.
ZU_API void symmetricEigenvalues(double a00, double a01, double a02, double a11, double a12, double a22,
                                 ZuDoubleDouble& largest, ZuDoubleDouble& middle, ZuDoubleDouble& smallest);

}  // namespace ZuMath
