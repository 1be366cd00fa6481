// zuDoubleDouble.h - number of twice the precision of a double. Group: maths.
#pragma once

#include <cmath>

/// The unevaluated sum of two doubles, high + low with |low| <= ulp(high) / 2: 106 bits at the range of a double.
///
/// For the few places where a cancellation must not cost digits; each operation costs about ten to thirty plain ones.
/// Relative errors: sum and product at most 2^-102, quotient and square root at most 2^-100, as long as nothing
/// overflows (2^996 for factors) or underflows. Needs arithmetic in plain double precision: no contraction into
/// multiply-adds, no x87 registers.
/// Source: T. J. Dekker, "A floating-point technique for extending the available precision" (1971); error bounds:
/// Joldes, Muller, Popescu, "Tight and rigorous error bounds for basic building blocks of double-word arithmetic"
/// (2017).
class ZuDoubleDouble {
 public:
  constexpr ZuDoubleDouble() = default;
  constexpr ZuDoubleDouble(double value) : m_High(value) {}  // NOLINT: every double is such a number

  /// a + b without error.
  static constexpr ZuDoubleDouble sum(double a, double b) {
    double const s = a + b;
    double const bPart = s - a;
    return {s, (a - (s - bPart)) + (b - bPart)};
  }
  /// a * b without error.
  static constexpr ZuDoubleDouble product(double a, double b) {
    double const p = a * b, aHigh = upperHalf(a), bHigh = upperHalf(b);
    double const aLow = a - aHigh, bLow = b - bHigh;
    return {p, ((aHigh * bHigh - p) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
  }

  /// The nearest double.
  constexpr double value() const { return m_High; }
  constexpr double low() const { return m_Low; }

  constexpr ZuDoubleDouble operator-() const { return {-m_High, -m_Low}; }
  constexpr ZuDoubleDouble operator+(ZuDoubleDouble const& o) const {
    ZuDoubleDouble const s = sum(m_High, o.m_High), t = sum(m_Low, o.m_Low);
    ZuDoubleDouble const v = ordered(s.m_High, s.m_Low + t.m_High);
    return ordered(v.m_High, v.m_Low + t.m_Low);
  }
  constexpr ZuDoubleDouble operator-(ZuDoubleDouble const& o) const { return *this + -o; }
  constexpr ZuDoubleDouble operator*(ZuDoubleDouble const& o) const {
    ZuDoubleDouble const p = product(m_High, o.m_High);
    return ordered(p.m_High, p.m_Low + (m_High * o.m_Low + m_Low * o.m_High));
  }
  constexpr ZuDoubleDouble operator/(ZuDoubleDouble const& o) const {
    double const quotient = m_High / o.m_High;
    ZuDoubleDouble const rest = *this - o * quotient;
    return ordered(quotient, rest.m_High / o.m_High);
  }
  /// Exact, unless it over- or underflows.
  constexpr ZuDoubleDouble timesPowerOfTwo(double power) const { return {m_High * power, m_Low * power}; }
  /// Of a number not below 0.
  ZuDoubleDouble sqrt() const {
    if (!(m_High > 0.0)) return {};
    double const root = std::sqrt(m_High);
    ZuDoubleDouble const rest = *this - product(root, root);
    return ordered(root, rest.m_High / (2.0 * root));
  }

 private:
  constexpr ZuDoubleDouble(double high, double low) : m_High(high), m_Low(low) {}
  /// a + b without error where |a| >= |b|, or a is 0.
  static constexpr ZuDoubleDouble ordered(double a, double b) {
    double const s = a + b;
    return {s, b - (s - a)};
  }
  /// The upper 26 bits: the products of such halves are exact.
  static constexpr double upperHalf(double a) {
    double const c = a * (0x1p27 + 1.0);
    return c - (c - a);
  }

  double m_High = 0.0;
  double m_Low = 0.0;
};
