#include "foundation/zuOrientation.h"

#include <algorithm>
#include <cmath>

#include "foundation/zuPrint.h"

bool ZuOrientation::approxEq(ZuOrientation const& q, double tolerance) const {
  return (std::abs(m_W - q.m_W) <= tolerance && m_Vector.approxEq(q.m_Vector, tolerance)) ||
         (std::abs(m_W + q.m_W) <= tolerance && m_Vector.approxEq(-q.m_Vector, tolerance));
}

void ZuOrientation::normalizeAny() {
  // Divided by its largest component first, so that no square overflows or vanishes.
  double const largest =
      std::max({std::abs(m_W), std::abs(m_Vector.x()), std::abs(m_Vector.y()), std::abs(m_Vector.z())});
  double const w = m_W / largest;
  ZuVector const vector = m_Vector / largest;
  double const length = std::sqrt(w * w + vector.magSquared());
  bool const hasDirection = largest > 0.0 && std::isfinite(length) && std::isfinite(largest);
  *this = hasDirection ? ZuOrientation(w / length, vector / length) : ZuOrientation();
}

void ZuOrientation::angleAxisBetween(ZuOrientation const& o, double& angle, ZuVector& axis) const {
  // o * inverse(), term by term so that equal orientations give exactly 0.
  double const w = o.m_W * m_W + o.m_Vector.dot(m_Vector);
  ZuVector const vector = (o.m_Vector * m_W - m_Vector * o.m_W) - o.m_Vector.cross(m_Vector);
  double const sine = vector.mag();
  angle = 2.0 * std::atan2(sine, std::abs(w));
  axis = sine > 0.0 ? (w < 0.0 ? -vector : vector).unitVector() : ZuVector::xVector(1.0);
}

namespace {

double departureFromDcm(ZuVector const& c0, ZuVector const& c1, ZuVector const& c2) {
  ZuVector const lengths(c0.magSquared() - 1.0, c1.magSquared() - 1.0, c2.magSquared() - 1.0);
  ZuVector const angles(c0.dot(c1), c1.dot(c2), c2.dot(c0));
  double const handedness = c0.cross(c1).dot(c2) - 1.0;
  return std::sqrt(lengths.magSquared() + angles.magSquared() + handedness * handedness);
}

}  // namespace

bool ZuOrientation::setFromDcmColumns(ZuVector const& c0, ZuVector const& c1, ZuVector const& c2) {
  double const departure = departureFromDcm(c0, c1, c2);
  if (!(departure <= m_theDcmTolerance)) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuOrientation::setFromDcmColumns-->not a rotation matrix (departure %g)", departure);
    return false;
  }
  // S. W. Shepperd, "Quaternion from rotation matrix", J. Guidance and Control 1(3), 1978: four times the square of
  // each component is a signed sum of the diagonal; dividing by the largest keeps full accuracy for every rotation.
  double const squares[4] = {1.0 + c0.x() + c1.y() + c2.z(), 1.0 + c0.x() - c1.y() - c2.z(),
                             1.0 - c0.x() + c1.y() - c2.z(), 1.0 - c0.x() - c1.y() + c2.z()};
  double const wx = c1.z() - c2.y(), wy = c2.x() - c0.z(), wz = c0.y() - c1.x();
  double const xy = c0.y() + c1.x(), xz = c2.x() + c0.z(), yz = c1.z() + c2.y();
  // Each case gives 4 a (w, x, y, z) with a its largest component.
  switch (std::max_element(squares, squares + 4) - squares) {
    case 0:
      *this = ZuOrientation(squares[0], ZuVector(wx, wy, wz));
      break;
    case 1:
      *this = ZuOrientation(wx, ZuVector(squares[1], xy, xz));
      break;
    case 2:
      *this = ZuOrientation(wy, ZuVector(xy, squares[2], yz));
      break;
    default:
      *this = ZuOrientation(wz, ZuVector(xz, yz, squares[3]));
      break;
  }
  normalizeAny();
  return true;
}

bool ZuOrientation::setFromAngleAxis(double angle, ZuVector const& axis) {
  ZuVector const unitAxis = axis.unitVector();
  bool const isGood = std::isfinite(angle) && (unitAxis != ZuVector() || (angle == 0.0 && axis == ZuVector()));
  if (!isGood) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuOrientation::setFromAngleAxis-->no rotation (angle %g, axis %g %g %g)", angle,
                                axis.x(), axis.y(), axis.z());
    return false;
  }
  rotationAbout(unitAxis, angle);
  return true;
}

ZuOrientation& ZuOrientation::rotationAbout(ZuVector const& unitAxis, double angle) {
  return *this = ZuOrientation(std::cos(0.5 * angle), unitAxis.x() * std::sin(0.5 * angle),
                               unitAxis.y() * std::sin(0.5 * angle), unitAxis.z() * std::sin(0.5 * angle));
}

void ZuOrientation::setFrom123Euler(double a, double b, double c) {
  *this = ZuOrientation().xRotation(a) * ZuOrientation().yRotation(b) * ZuOrientation().zRotation(c);
}

double ZuOrientation::invalidIndex(unsigned int index) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuOrientation::operator[]-->invalid index (%u)", index);
  return 0.0;
}
