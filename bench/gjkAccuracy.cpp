// Accuracy of the convex engines on random pairs, as a table for docs/numerics.md. Usage:
//   gjkAccuracy ENGINE CLASS FIRST LAST   checks the pairs of these numbers; ENGINE is robust or default, CLASS see
//                                         accuracy::Pairs. Prints faults, and a line of counts for each twentieth.
//   gjkAccuracy show CLASS NUMBER         a pair, to reproduce a fault.
//   gjkAccuracy table FILE...             the table of such lines, added up.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/accuracyPairs.h"

namespace {

using accuracy::Limits;
using accuracy::Tally;
using oracle::Pose;

/// Faults that are told one by one, for each run.
constexpr int theMostMessages = 200;

/// The default engine promises nothing: wrong is what is off by more than 1e-6 sizes.
Limits limitsOf(std::string const& engine, std::string const& pairs) {
  Limits limits;
  if (engine == "default") limits.distance = limits.depth = limits.curvedDepth = 1e-6;
  bool const isExact = pairs == "box" || pairs == "capsule" || pairs == "8" || pairs == "64";
  limits.everyDepth = isExact ? 1 : pairs == "512" ? 51 : pairs == "meshes" ? 51 : pairs == "4096" ? 2001 : 2;
  return limits;
}

void printCounts(char const* engine, std::string const& pairs, std::uint64_t first, std::uint64_t last,
                 Tally const& t) {
  std::printf("counts %s %s %llu %llu %ld %ld %ld %ld %ld", pairs.c_str(), engine,
              static_cast<unsigned long long>(first), static_cast<unsigned long long>(last), t.apart, t.grazing,
              t.overlapping, t.depths, t.starts);
  for (long const count : t.faults) std::printf(" %ld", count);
  std::printf(" %g %g\n", t.worstDistance, t.worstDepth);
  std::fflush(stdout);
}

void run(char const* name, std::string const& className, std::uint64_t first, std::uint64_t last) {
  ZuGJK prescribed;
  ZuRobustGJK robust;
  ZuGJK& engine = std::strcmp(name, "robust") == 0 ? robust : prescribed;
  accuracy::Pairs pairs(className);
  Limits const limits = limitsOf(name, pairs.name());
  std::uint64_t const step = std::max<std::uint64_t>((last - first) / 20, 1);
  accuracy::Pair pair;
  int messages = 0;
  for (std::uint64_t from = first; from < last; from += step) {
    std::uint64_t const to = std::min(from + step, last);
    Tally tally;
    for (std::uint64_t k = from; k < to; ++k) {
      if (!pairs.pair(k, pair)) continue;
      accuracy::Check const check(engine, pair, limits, k, tally);
      if (check.message().empty() || ++messages > theMostMessages) continue;
      std::printf("fault %s %s %llu:%s\n", className.c_str(), name, static_cast<unsigned long long>(k),
                  check.message().c_str());
    }
    printCounts(name, pairs.name(), from, to, tally);
  }
}

void show(char const* what, std::initializer_list<double> values) {
  std::printf("%s", what);
  for (double const value : values) std::printf(" %.17g", value);
  std::printf("\n");
}

/// All of a pair, and what both engines answer.
void show(std::string const& className, std::uint64_t k) {
  static char const* const theKinds[] = {"hull", "box", "cylinder", "cone", "ellipsoid", "capsule"};
  accuracy::Pairs pairs(className);
  accuracy::Pair pair;
  if (!pairs.pair(k, pair)) return;
  for (accuracy::Body const* body : {&pair.a, &pair.b}) {
    ZuVector const half = oracle::rounded(body->solid.half()), center = oracle::rounded(body->solid.center());
    std::printf("%s", theKinds[body->solid.kind()]);
    show(", half or radius, half, radius:", {half.x(), half.y(), half.z(), static_cast<double>(body->solid.radius())});
    show("  centre:", {center.x(), center.y(), center.z()});
    if (body->solid.kind() == accuracy::Solid::HULL && body->solid.hull()->vertices().size() <= 8) {
      for (ZuVector const& v : body->solid.hull()->vertices()) show("  vertex:", {v.x(), v.y(), v.z()});
    }
    Pose const& T = body == &pair.a ? pair.T1 : pair.T2;
    ZuVector const t = T.translation();
    ZuOrientation const& q = T.orientation();
    show("  pose, x y z, quaternion w x y z:", {t.x(), t.y(), t.z(), q[0], q[1], q[2], q[3]});
  }
  ZuGJK prescribed;
  ZuRobustGJK robust;
  for (ZuGJK* engine : {&prescribed, static_cast<ZuGJK*>(&robust)}) {
    Tally tally;
    accuracy::Check const check(*engine, pair, limitsOf(engine == &robust ? "robust" : "default", "8"), k, tally);
    ZuVector witness1, witness2, v;
    double distance = 0.0;
    engine->distance(*pair.a.shape, *pair.b.shape, pair.T1, pair.T2, true, witness1, witness2, distance, &v);
    show(engine == &robust ? "robust:" : "default:", {distance, v.x(), v.y(), v.z(), robust.depthGap()});
    show("  proven from below:", {static_cast<double>(check.lower()), check.message().empty() ? 0.0 : 1.0});
  }
}

/// The counts of a class and engine.
struct Row {
  std::string pairs, engine;
  Tally tally;
};

void add(std::istream& words, Tally& t) {
  Tally other;
  double first = 0.0, last = 0.0;
  words >> first >> last >> other.apart >> other.grazing >> other.overlapping >> other.depths >> other.starts;
  for (long& count : other.faults) words >> count;
  words >> other.worstDistance >> other.worstDepth;
  t.apart += other.apart;
  t.grazing += other.grazing;
  t.overlapping += other.overlapping;
  t.depths += other.depths;
  t.starts += other.starts;
  for (std::size_t i = 0; i < accuracy::theNumberOfFaults; ++i) t.faults[i] += other.faults[i];
  t.worstDistance = std::max(t.worstDistance, other.worstDistance);
  t.worstDepth = std::max(t.worstDepth, other.worstDepth);
}

void read(char const* file, std::vector<Row>& rows) {
  std::ifstream in(file);
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string key, pairs, engine;
    words >> key >> pairs >> engine;
    if (key != "counts") continue;
    auto const isSame = [&](Row const& row) { return row.pairs == pairs && row.engine == engine; };
    auto row = std::find_if(rows.begin(), rows.end(), isSame);
    if (row == rows.end()) row = rows.insert(rows.end(), {pairs, engine, {}});
    add(words, row->tally);
  }
}

void printTable(std::vector<Row> const& rows) {
  std::printf(
      "| bodies | engine | apart | grazing | overlapping | distance off | wrong side | worst | depths checked | depth "
      "off | worst | witness off | start or order off |\n"
      "|---|---|---|---|---|---|---|---|---|---|---|---|---|\n");
  long undecided = 0;
  for (Row const& row : rows) {
    Tally const& t = row.tally;
    std::printf("| %s | %s | %ld | %ld | %ld | %ld | %ld | %.0e | %ld | %ld | %.0e | %ld | %ld |\n", row.pairs.c_str(),
                row.engine.c_str(), t.apart, t.grazing, t.overlapping, t.faults[accuracy::DISTANCE],
                t.faults[accuracy::SIDE], t.worstDistance, t.depths, t.faults[accuracy::DEPTH], t.worstDepth,
                t.faults[accuracy::WITNESS], t.faults[accuracy::START]);
    undecided += t.faults[accuracy::UNPROVEN] + t.faults[accuracy::FINITE];
  }
  std::printf("\nNot proven either way, or not finite: %ld.\n", undecided);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], "table") == 0) {
    std::vector<Row> rows;
    for (int i = 2; i < argc; ++i) read(argv[i], rows);
    printTable(rows);
  } else if (argc == 4 && std::strcmp(argv[1], "show") == 0) {
    show(argv[2], std::strtoull(argv[3], nullptr, 10));
  } else if (argc == 5) {
    run(argv[1], argv[2], std::strtoull(argv[3], nullptr, 10), std::strtoull(argv[4], nullptr, 10));
  } else {
    std::fprintf(stderr, "usage: gjkAccuracy robust|default CLASS FIRST LAST, or gjkAccuracy table FILE...\n");
    return 1;
  }
  return 0;
}
