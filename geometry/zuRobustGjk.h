// zuRobustGjk.h - convex engine whose answers hold at every scale. Group: convex engine.
#pragma once

#include "geometry/zuGjk.h"

class ZuCoreDifference;
class ZuCoreSimplex;
class ZuDepthPolytope;

/// A ZuGJK whose distances and depths are right to rounding, whatever the size, place and figure of the solids.
///
/// **Method.** The iteration of Gilbert, Johnson and Keerthi on the difference set, in the frame of shape 1, with a
/// search of the nearest face by signed volumes (Montanari et al. 2017) that knows no absolute length; it ends when the
/// distance and a proven lower bound of it meet. Overlapping shapes get their depth from an expanding polytope (van den
/// Bergen 2001), which ends when the depth and a proven lower bound meet. Round solids run as their cores, a point for
/// a sphere and a segment for a capsule, and the radius is added at the end, which is exact. docs/numerics.md derives
/// the steps and gives accuracy and speed.
///
/// **Guarantees**, in terms of the size of the pair, the largest extent of the two solids, from 1e-6 m to 1e6 m, and
/// for places of up to 1e6 sizes from the origins of the frames, plus what those places cost in rounding (16 eps of
/// them):
///
/// 1. The distance is within 1e-9 sizes of that of the solids.
/// 2. Pairs farther apart than that have a distance above 0, pairs deeper in each other one below it.
/// 3. The depth is within 1e-7 sizes of the length of the least translation that separates the solids; within 1e-6 for
///    curved solids that are not round (cylinders, cones, ellipsoids).
/// 4. The witness points lie on their solids within 1e-9 sizes, and differ by the separation vector, whose length is
///    that of the distance.
/// 5. No input of finite numbers makes it loop, allocate without bound, or return a nan. The iteration takes at most
///    256 steps and, where doubles leave doubts, 256 more in twice their digits; the polytope maxIterations()
///    expansions, eight descents of 200 steps and 512 more. Answers that would overflow are 0, with a message.
/// 6. The answer does not depend on the start, nor on which shape comes first, beyond these bands.
/// 7. Flat, thin, needle-like, single-point and identical shapes are legal. A pair whose difference set is flat (two
///    plates in one plane) has depth 0.
///
/// They rest on support points that are right to rounding. Measured exceptions: solids that are as deep all around, as
/// two coaxial cylinders, have proven depths; of those that are as deep in all directions of a solid angle, as nearly
/// round ellipsoids about one centre, the depth is the least of several local minima, found by descents: right to the
/// band in all of 5768 pairs, of both kinds, that were compared with dense samples, but proven to 2e-3 sizes only.
/// depthGap() tells what was proven.
///
/// **The steps** of ZuGJK are not part of this iteration; overriding them changes nothing. It keeps no simplex:
/// `reset()`, `saveCache()` and the dumps see that of the base class, which stays empty.
///
/// **Settings.** tolerance() is the gap between a distance and its lower bound at which an iteration ends, as a part of
/// the size: 1e-14. A depth takes 1e-10, or the tolerance when that is larger, and more after 256 expansions.
/// maxIterations() bounds the expansions of a depth: 16384.
///
/// **State.** Only the lists of the polytope, empty until a first depth, which grow to what the largest needed (400
/// bytes for each expansion): after that no query allocates. Copies don't take them along. One engine serves one thread
/// at a time; results do not depend on earlier queries.
class ZU_API ZuRobustGJK : public ZuGJK {
 public:
  ZuRobustGJK();
  ZuRobustGJK(ZuRobustGJK const& other);
  ZuRobustGJK& operator=(ZuRobustGJK const& other);
  ~ZuRobustGJK() override;

  /// What could not be proven of the last query's depth: an upper bound, m, on how much less it may be. 0 for a
  /// distance.
  double depthGap() const { return m_DepthGap; }
  /// Whether the polytope of the last depth is a closed surface, facets turned outwards. For tests; facets times
  /// points.
  bool validateDepthPolytope() const;

  // See ZuGJK

  bool operator==(ZuGJK const& other) const override;
  /// As ZuGJK::distance(), with these differences: the distance of shapes that touch is 0 or a rounding error of either
  /// sign when penetration is asked for; without, shapes that touch or overlap give one common point and the zero
  /// vector. Directions of any length start the search, but not of balls, capsules, boxes and cylinders, for which a
  /// better start has a closed form.
  bool distance(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                ZuCoordinateSystemTransformation const& T2, bool computePenetration, ZuVector& witness1,
                ZuVector& witness2, double& distance, ZuVector* separation) override;
  /// Checks answers with closed forms.
  bool selfTest() const override;
  /// The depth alone; false, and nothing is set, when the shapes are apart.
  bool penetration(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                   ZuCoordinateSystemTransformation const& T2, ZuVector& witness1, ZuVector& witness2,
                   ZuVector& penetrationVector) override;
  /// Also frees the lists of the polytope.
  void resetPenetration() override;
  std::unique_ptr<ZuGJK> clone() const override;

 private:
  struct Answer;
  class Iteration;

  bool query(ZuCoreDifference& set, ZuVector const* start, bool computePenetration, Answer& answer);
  bool findDepth(ZuCoreDifference& set, ZuCoreSimplex const& simplex, Answer& answer);
  bool findBoxDepth(ZuCoreDifference const& set, Answer& answer) const;

  std::unique_ptr<ZuDepthPolytope> m_Polytope;
  double m_DepthGap = 0.0;
};
