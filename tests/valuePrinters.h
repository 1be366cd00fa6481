// valuePrinters.h - how GoogleTest shows the plain values of the libraries.
#pragma once

#include <ostream>

#include "foundation/zuCoordinateSystemTransformation.h"

inline void PrintTo(ZuVector const& v, std::ostream* out) {
  auto const precision = out->precision(17);
  *out << '(' << v.x() << ' ' << v.y() << ' ' << v.z() << ')';
  out->precision(precision);
}

inline void PrintTo(ZuOrientation const& q, std::ostream* out) {
  auto const precision = out->precision(17);
  *out << "[w " << q[0] << " x " << q[1] << " y " << q[2] << " z " << q[3] << ']';
  out->precision(precision);
}

inline void PrintTo(ZuCoordinateSystemTransformation const& t, std::ostream* out) {
  PrintTo(t.translation(), out);
  PrintTo(t.orientation(), out);
}
