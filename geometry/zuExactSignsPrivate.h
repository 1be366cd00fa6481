// zuExactSignsPrivate.h - on which side points lie, without rounding. Group: figures.
#pragma once

#include "foundation/zuVector.h"

/// Signs of determinants of double coordinates, as if computed with infinite precision: an estimate in doubles decides
/// when it is further from zero than its error bound, otherwise the determinant is summed exactly as an expansion
/// (Shewchuk 1997).
///
/// Exact as long as no product of three coordinates overflows and none of their rounding errors underflows: safe for
/// coordinates of 1e-75 to 1e100 in magnitude, or 0. A coordinate that is not finite gives an arbitrary sign.
namespace ZuExactSigns {

/// +1 when d lies on the side of the plane through a, b, c from which they run clockwise, -1 on the other side, 0 in
/// it.
int side(ZuVector const& a, ZuVector const& b, ZuVector const& c, ZuVector const& d);

/// The turn a, b, c as seen against coordinate axis `axis` (0, 1, 2): +1 counter-clockwise, -1 clockwise, 0 on one
/// line.
int turn(ZuVector const& a, ZuVector const& b, ZuVector const& c, unsigned int axis);

}  // namespace ZuExactSigns
