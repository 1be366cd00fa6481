#include "foundation/zuVector.h"

#include <type_traits>

#include "foundation/zuPrint.h"

static_assert(sizeof(ZuVector) == 24 && std::is_trivially_copyable_v<ZuVector>,
              "arrays of vectors are arrays of doubles");

namespace {

/// A power of two that brings the vector to where squares neither overflow nor lose bits: scaling by it is exact.
/// Denormals become at least 2^-474, the largest doubles at most 2^424.
double safeScale(ZuVector const& v) {
  bool const isLarge = std::abs(v.x()) > 1.0 || std::abs(v.y()) > 1.0 || std::abs(v.z()) > 1.0;
  return isLarge ? 0x1p-600 : 0x1p+600;
}

}  // namespace

double ZuVector::magOfExtremes() const {
  if (std::isinf(x()) || std::isinf(y()) || std::isinf(z())) return HUGE_VAL;
  double const scale = safeScale(*this);
  return std::sqrt((*this * scale).magSquared()) / scale;
}

ZuVector ZuVector::unitVectorOfExtremes() const {
  ZuVector const scaled = *this * safeScale(*this);
  double const squared = scaled.magSquared();
  return isSafeSquare(squared) ? scaled * (1.0 / std::sqrt(squared)) : ZuVector();
}

double& ZuVector::invalidIndex(unsigned int index) {
  static thread_local double theDummy;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuVector::operator[]-->invalid index (%u)", index);
  theDummy = 0.0;
  return theDummy;
}
