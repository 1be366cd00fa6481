// zuSpatialVector.h - what general motions and general forces have in common. Group: spatial algebra.
#pragma once

#include <algorithm>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuReArray.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"
#include "geometry/zuManipTokens.h"

/// Six scalars: a linear vector, indices 0 to 2, and an angular one, indices 3 to 5. Derived is the twin that is built
/// on it; its `moveReferencePoint(r)` is all that the change of reference point needs to know of it.
///
/// Written as the elements "linear" and "angular". Constructing, copying and assigning never allocate. Equality is
/// exact. As thread-safe as a value, except that the first XML use builds the object's table of components.
template <class Derived>
class ZU_API ZuSpatialVector : public ZuXmlClass<Derived, ZuXmlCompoundType> {
 public:
  ZuSpatialVector() = default;
  ZuSpatialVector(ZuVector const& linear, ZuVector const& angular) : m_Linear(linear), m_Angular(angular) {}

  ZuVector const& linear() const { return m_Linear.value(); }
  ZuVector const& angular() const { return m_Angular.value(); }
  void setLinear(ZuVector const& linear) { m_Linear.setValue(linear); }
  void setAngular(ZuVector const& angular) { m_Angular.setValue(angular); }

  /// Scalar i of the six; 0.0 for an index above 5.
  double operator[](unsigned int i) const { return i < 3 ? linear()[i] : i < 6 ? angular()[i - 3] : 0.0; }
  /// Nothing happens for an index above 5.
  void setScalarValue(unsigned int i, double v) {
    if (i > 5) return;
    ZuXmlVector& part = i < 3 ? m_Linear : m_Angular;
    ZuVector changed = part.value();
    changed[i % 3] = v;
    part.setValue(changed);
  }
  /// Makes the array 6 rows of 1 column and fills it with the six scalars.
  void copyToArray(ZuReArray& a) const {
    if (!a.resizeArray(6, 1)) return;
    for (unsigned int row = 0; row < 6; ++row) a(row, 0) = (*this)[row];
  }
  /// Takes the first scalars from the first column, as many as there are rows, at most six; the others stay.
  void copyFromArray(ZuReArray const& a) {
    if (a.columns() == 0) return;
    for (unsigned int row = 0; row < std::min(a.rows(), 6U); ++row) setScalarValue(row, a(row, 0));
  }

  bool operator==(ZuSpatialVector const& o) const {
    return ZuXmlCompoundType::operator==(o) && m_Linear == o.m_Linear && m_Angular == o.m_Angular;
  }
  bool operator!=(ZuSpatialVector const& o) const { return !(*this == o); }
  /// True when every scalar differs by at most the tolerance.
  bool approxEq(Derived const& other, double tol) const {
    return linear().approxEq(other.linear(), tol) && angular().approxEq(other.angular(), tol);
  }

  Derived operator+(Derived const& o) const { return Derived(linear() + o.linear(), angular() + o.angular()); }
  Derived operator-(Derived const& o) const { return Derived(linear() - o.linear(), angular() - o.angular()); }
  Derived operator-() const { return Derived(-linear(), -angular()); }
  Derived operator*(double const& s) const { return Derived(linear() * s, angular() * s); }
  Derived& operator+=(Derived const& o) { return set(linear() + o.linear(), angular() + o.angular()); }
  Derived& operator-=(Derived const& o) { return set(linear() - o.linear(), angular() - o.angular()); }
  Derived& operator*=(double s) { return set(linear() * s, angular() * s); }

  /// Turns both parts.
  Derived& transformBy(ZuOrientation const& q) { return set(q * linear(), q * angular()); }
  /// Moves the reference point by the offset r; see `moveReferencePoint` of the twin.
  Derived& transformBy(ZuVector const& r) {
    self().moveReferencePoint(r);
    return self();
  }
  /// Turns by the orientation of t, then moves by its translation; what the mode of t says is not there is not done, so
  /// that the identity changes no bit.
  Derived& transformBy(ZuCoordinateSystemTransformation const& t) {
    using Transformation = ZuCoordinateSystemTransformation;
    if (t.hasRotation()) transformBy(t.orientation());
    if (t.mode() == Transformation::GENERAL || t.mode() == Transformation::TRANSLATION_ONLY)
      transformBy(t.translation());
    return self();
  }
  /// A transformed copy.
  friend Derived operator*(ZuOrientation const& q, Derived const& x) { return Derived(x).transformBy(q); }
  friend Derived operator*(ZuCoordinateSystemTransformation const& t, Derived const& x) {
    return Derived(x).transformBy(t);
  }

  // See ZuXmlCompoundType
  void registerComponents() override {
    ZuXmlCompoundType::registerComponents();
    this->registerComponent(ZuManip::ZuLinearToken, &m_Linear);
    this->registerComponent(ZuManip::ZuAngularToken, &m_Angular);
  }
  static Derived testObject() { return Derived(ZuVector::testObject(), ZuVector(-0.25, 3.5, 8.0)); }

 protected:
  ZuXmlVector m_Linear;
  ZuXmlVector m_Angular;

 private:
  Derived& self() { return static_cast<Derived&>(*this); }
  Derived& set(ZuVector const& linear, ZuVector const& angular) {
    m_Linear.setValue(linear);
    m_Angular.setValue(angular);
    return self();
  }
};
