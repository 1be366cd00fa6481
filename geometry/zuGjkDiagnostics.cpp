#include <cmath>
#include <fstream>
#include <limits>

#include "foundation/zuPrint.h"
#include "foundation/zuReArray.h"
#include "geometry/zuGjk.h"
#include "geometry/zuSimplexPrivate.h"

namespace {

/// Of the answers that selfTest() knows, relative.
constexpr double theSelfTestTolerance = 1e-12;

using ZuSimplex::holds;

void writeVector(std::ostream& out, char const* name, ZuVector const& v) {
  out << ' ' << name << ' ' << v.x() << ' ' << v.y() << ' ' << v.z();
}

bool open(std::ofstream& file, char const* function, std::string const& fileName) {
  file.open(fileName);
  file.precision(std::numeric_limits<double>::max_digits10);
  if (file.is_open()) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "%s-->can't write file (%s)", function, fileName.c_str());
  return false;
}

/// The rows of the linear system for the weights of a set's points: ones; the conditions that the nearest point is at a
/// right angle to the edges, or for four points that it is the origin.
ZuReArray systemOf(ZuVector const* points, unsigned int count) {
  ZuReArray rows(count, count);
  for (unsigned int column = 0; column < count; ++column) {
    rows(0, column) = 1.0;
    for (unsigned int row = 1; row < count; ++row) {
      rows(row, column) = count == 4 ? points[column][row - 1] : (points[row] - points[0]).dot(points[column]);
    }
  }
  return rows;
}

}  // namespace

void ZuGJK::debugInverse(int set) const {
  ZuVector points[4];
  int places[4];
  unsigned int count = 0;
  double sum = 0.0;
  for (int i = 0; i < 4; ++i) {
    if (!holds(set, i)) continue;
    places[count] = i;
    points[count++] = m_Simplex.y[i];
    sum += m_Det[set & 15][i];
  }
  ZuReArray rightHandSide(count, 1), weights(count, 1);
  if (count > 0) rightHandSide(0, 0) = 1.0;
  bool const solved = count > 0 && systemOf(points, count).solve(rightHandSide, weights);
  Zu::Print::instance().write(Zu::PRINT_NOTE, "ZuGJK::debugInverse-->set %d: %s", set & 15,
                              solved ? "place, weight, solved weight" : "no weights");
  for (unsigned int k = 0; solved && k < count; ++k) {
    Zu::Print::instance().write(Zu::PRINT_NOTE, "  %d %.17g %.17g", places[k], m_Det[set & 15][places[k]] / sum,
                                weights(k, 0));
  }
}

void ZuGJK::dumpSimplex(std::string const& fileName) const {
  std::ofstream file;
  if (open(file, "ZuGJK::dumpSimplex", fileName)) writeSimplex(file);
}

void ZuGJK::writeSimplex(std::ostream& out) const {
  out << "bits " << m_Simplex.bits << " last " << m_Simplex.last << " lastBit " << m_Simplex.lastBit << " allBits "
      << m_Simplex.allBits << '\n';
  for (int i = 0; i < 4; ++i) {
    out << i;
    writeVector(out, "p", m_Simplex.p[i]);
    writeVector(out, "q", m_Simplex.q[i]);
    writeVector(out, "y", m_Simplex.y[i]);
    out << '\n';
  }
}

void ZuGJK::dump(std::string const& fileName) const {
  std::ofstream file;
  if (!open(file, "ZuGJK::dump", fileName)) return;
  file << "tolerance " << m_Tolerance << " maxIterations " << m_MaxIterations << '\n';
  writeSimplex(file);
  for (int set = 1; set < 16; ++set) {
    file << "det " << set;
    for (double const weight : m_Det[set]) file << ' ' << weight;
    file << '\n';
  }
  for (std::size_t i = 0; i < m_PolytopeY.size(); ++i) {
    file << "point " << i;
    writeVector(file, "y", m_PolytopeY[i]);
    file << '\n';
  }
  for (std::size_t f = 0; f < m_Facets.size(); ++f) {
    if (m_Facets[f].valid() == 0) continue;
    file << "facet " << f << " corners " << m_Facets[f].vertexIndex(0) << ' ' << m_Facets[f].vertexIndex(1) << ' '
         << m_Facets[f].vertexIndex(2) << " distance " << m_Facets[f].distance() << '\n';
  }
}

bool ZuGJK::selfTest() const {
  // A triangle around (1 0 0), at a right angle to it, with that point as its centroid; then a point beyond the origin.
  ZuVector const corners[4] = {{1.0, 2.0, 0.0}, {1.0, -1.0, 2.0}, {1.0, -1.0, -2.0}, {-1.0, 0.0, 0.0}};
  ZuVector const nearest[4] = {{1.0, 0.0, 0.0}, {1.0, -1.0, 0.0}, corners[2], ZuVector()};
  int const sets[4] = {7, 6, 4, 15};
  std::unique_ptr<ZuGJK> const probe = clone();
  Simplex& s = probe->m_Simplex;
  probe->reset();
  bool good = true;
  for (int const place : {2, 1, 0, 3}) {
    s.last = place;
    s.lastBit = 1 << place;
    s.p[place] = s.y[place] = corners[place];
    s.q[place] = ZuVector();
    s.allBits = s.bits | s.lastBit;
    probe->saveCache();
    ZuVector v, a, b;
    good = good && probe->closestInUnion(v) && s.bits == sets[place] && probe->repeatPoint(corners[place]) &&
           v.approxEq(nearest[place], theSelfTestTolerance);
    probe->pointsInLocal(s.bits, a, b);
    good = good && a.approxEq(v, theSelfTestTolerance) && b == ZuVector();
  }
  probe->restoreFromCache();
  return good && s.bits == 7 && s.allBits == 15 && s.last == 3;
}
