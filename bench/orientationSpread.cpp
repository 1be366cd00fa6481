// orientationSpread.cpp - how evenly orientations and directions are sampled; the tables of docs/numerics.md.
//
// Usage: orientationSpread [TRIALS]   random rotations for the largest gap; 1000000 by default

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "geometry/zu600cell.h"
#include "geometry/zuTruncatedIcosahedron.h"

namespace {

double const thePi = std::acos(-1.0);
double const theDegree = thePi / 180.0;

/// Unit points of R^4 (rotations, where p and -p are the same) or of R^3 with a last coordinate of 0.
struct Point {
  double c[4];
};

class Random {
 public:
  double real() { return static_cast<double>(m_Engine() >> 11) * 0x1p-52 - 1.0; }
  Point point(unsigned int dimension) {
    for (;;) {
      Point p{{0.0, 0.0, 0.0, 0.0}};
      double squared = 0.0;
      for (unsigned int i = 0; i < dimension; ++i) {
        p.c[i] = real();
        squared += p.c[i] * p.c[i];
      }
      if (squared > 1.0 || squared < 0.01) continue;
      for (double& x : p.c) x /= std::sqrt(squared);
      return p;
    }
  }

 private:
  std::mt19937_64 m_Engine{20240602};
};

double cosine(Point const& p, Point const& q) {
  return p.c[0] * q.c[0] + p.c[1] * q.c[1] + p.c[2] * q.c[2] + p.c[3] * q.c[3];
}

/// Groups of points that lie near a centre: whole groups can be passed over.
class Samples {
 public:
  Samples(std::vector<Point> const& points, unsigned int groupSize, bool areRotations) : m_AreRotations(areRotations) {
    for (std::size_t first = 0; first < points.size(); first += groupSize) {
      Group group;
      Point sum{{0.0, 0.0, 0.0, 0.0}};
      for (std::size_t i = first; i < std::min(points.size(), first + groupSize); ++i) {
        group.points.push_back(points[i]);
        for (unsigned int c = 0; c < 4; ++c) sum.c[c] += points[i].c[c];
      }
      double const length = std::sqrt(cosine(sum, sum));
      for (double& x : sum.c) x /= length;
      group.centre = sum;
      for (Point const& p : group.points) group.radius = std::max(group.radius, arc(cosine(p, sum)));
      m_Groups.push_back(group);
    }
  }

  /// The arc to the nearest sample that is not p itself.
  double gap(Point const& p) const {
    double best = thePi;
    for (Group const& group : m_Groups) {
      if (arc(closeness(p, group.centre)) > best + group.radius) continue;
      for (Point const& q : group.points) {
        double const closest = closeness(p, q);
        if (closest < 1.0 - 1e-13) best = std::min(best, arc(closest));
      }
    }
    return best;
  }
  template <class Function>
  void forEach(Function const& function) const {
    for (Group const& group : m_Groups) {
      for (Point const& p : group.points) function(p);
    }
  }

 private:
  struct Group {
    std::vector<Point> points;
    Point centre{};
    double radius = 0.0;
  };
  static double arc(double cosineOfIt) { return std::acos(std::min(1.0, cosineOfIt)); }
  double closeness(Point const& p, Point const& q) const {
    return m_AreRotations ? std::abs(cosine(p, q)) : cosine(p, q);
  }

  std::vector<Group> m_Groups;
  bool m_AreRotations;
};

/// Arcs of quaternions are half the angles of rotations.
void print(char const* name, unsigned int n, std::vector<Point> const& points, unsigned int groupSize,
           bool areRotations, int trials) {
  Samples const samples(points, groupSize, areRotations);
  double const turn = areRotations ? 2.0 : 1.0, count = static_cast<double>(points.size());
  double largestGap = 0.0, nearest = thePi, sum = 0.0;
  Random random;
  for (int i = 0; i < trials; ++i)
    largestGap = std::max(largestGap, turn * samples.gap(random.point(areRotations ? 4 : 3)));
  samples.forEach([&](Point const& p) {
    double const gap = turn * samples.gap(p);
    nearest = std::min(nearest, gap);
    sum += gap;
  });
  // The share of all rotations, or directions, within an angle a of one: (a - sin a)/pi, or (1 - cos a)/2. Of count
  // random ones, the nearest is on average where the share is 1/count, less a factor Gamma(1 + 1/dimension).
  double const share = areRotations ? (largestGap - std::sin(largestGap)) / thePi : 0.5 * (1.0 - std::cos(largestGap));
  double const atRandom = areRotations ? std::tgamma(4.0 / 3.0) * std::cbrt(6.0 * thePi / count)
                                       : std::tgamma(1.5) * std::sqrt(4.0 / count);
  std::printf("| %s | %u | %.0f | %.3f | %.3f | %.3f | %.3f | %.2f | %.2f |\n", name, n, count, largestGap / theDegree,
              count * share, nearest / theDegree, sum / count / theDegree, nearest / atRandom, sum / count / atRandom);
  std::fflush(stdout);
}

void printRotations(unsigned int n, int trials) {
  Zu600Cell cell;
  cell.setupForSampling(n);
  std::vector<Point> points, even;
  Random random;
  for (unsigned int i = 0; i < cell.totalSampleCount(); ++i) {
    ZuOrientation const q = cell.sample(i);
    points.push_back({{q[0], q[1], q[2], q[3]}});
    even.push_back(random.point(4));
  }
  print("Zu600Cell", n, points, cell.singleTetrahedronSampleCount(), true, trials);
  if (n <= 2) print("uniform random", n, even, 1, true, trials / 10);
}

void printDirections(unsigned int n, int trials) {
  ZuTruncatedIcosahedron faces;
  faces.setupForSampling(n);
  std::vector<Point> points;
  for (unsigned int i = 0; i < faces.totalSampleCount(); ++i) {
    ZuVector const v = faces.sample(i);
    points.push_back({{v.x(), v.y(), v.z(), 0.0}});
  }
  print("ZuTruncatedIcosahedron", n, points, faces.singleTriangleSampleCount(), false, trials);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  int const trials = argumentCount > 1 ? std::atoi(arguments[1]) : 1000000;
  std::printf(
      "| samples | n | count | largest gap (deg) | coverage | nearest pair (deg) | mean to nearest (deg) | "
      "nearest / random mean | mean / random mean |\n|---|---|---|---|---|---|---|---|---|\n");
  for (unsigned int const n : {1U, 2U, 3U, 4U, 6U, 8U}) printRotations(n, trials);
  for (unsigned int const n : {1U, 2U, 4U, 8U}) printDirections(n, trials);
  return 0;
}
