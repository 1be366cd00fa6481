// reachableGrasps.cpp - from where a gripper can reach an object on a table.
//
// Usage: reachableGrasps [PICTURE.svg [MESH.obj]]   reachable_grasps.svg; a drill where there is its mesh, else a
// bottle
//
// Orientations of the gripper are sampled evenly over all rotations (Zu600Cell), its finger tips around one point of
// the object. An orientation is reachable when no part of the gripper touches the table or the object. The picture
// shows the object, and for each direction of approach how many of the turns about it are reachable.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "examples/svg.h"
#include "foundation/zuManipulatorSystem.h"
#include "geometry/zu600cell.h"
#include "geometry/zuBox.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuHalfSpace.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "geometry/zuTruncatedIcosahedron.h"
#include "tools/meshFile.h"

namespace {

constexpr unsigned int theLayersOfOrientations = 5;  ///< 10500 orientations, about 14 degrees apart
constexpr unsigned int theLayersOfDirections = 6;    ///< 3780 dots
constexpr double theNeighborhood = 0.985;            ///< cosine: orientations within 10 degrees count for a direction
constexpr double theGraspHeight = 0.4;               ///< of the finger tips, as a share of the object's height
constexpr double theHalfSlice = 0.05;                ///< of the object's height: what is seen of it at the grasp

Color const theTableColor{0.90, 0.52, 0.15}, theObjectColor{0.50, 0.42, 0.70}, theFewColor{0.85, 0.95, 0.80},
    theAllColor{0.0, 0.35, 0.15}, theInk{0.2, 0.2, 0.2}, theTopColor{0.96, 0.93, 0.88},
    theGripperColor{0.25, 0.33, 0.45};

enum class Outcome { REACHABLE, TABLE, OBJECT };

/// The gripper, and what it may touch.
class TwoBodies : public ZuManipulatorSystem {
 public:
  unsigned int numberOfManipulators() const override { return 2; }
  unsigned int numberOfLinks(unsigned int) const override { return 1; }
  unsigned int numberOfShapes(unsigned int, unsigned int) const override { return 1; }
};

/// A bar of the gripper: along z from `low` to `high`, in m.
struct Bar {
  double x, low, high, halfX, halfY;

  ZuVector end(double z) const { return ZuVector(x, 0.0, z); }
};

/// Two fingers, the palm and the arm. The tips of the fingers are at the origin of the gripper's frame; z is the
/// direction of approach, x that in which the fingers close.
constexpr Bar theBars[] = {{-0.048, -0.075, 0.012, 0.007, 0.010},
                           {0.048, -0.075, 0.012, 0.007, 0.010},
                           {0.0, -0.125, -0.075, 0.070, 0.025},
                           {0.0, -0.400, -0.125, 0.040, 0.040}};

/// Its bars as solids, which share one record of the memory.
class Gripper {
 public:
  Gripper() {
    for (Bar const& bar : theBars) {
      ZuVector const centre = bar.end(0.5 * (bar.low + bar.high));
      m_Parts.push_back(std::make_unique<ZuBox>(ZuCoordinateSystemTransformation(centre),
                                                ZuVector(bar.halfX, bar.halfY, 0.5 * (bar.high - bar.low))));
    }
    m_Memory.resizeDatabaseToSystem(TwoBodies());
    m_Memory.setIsInitialized(true);
  }

  /// Whether a part touches the other shape; p_shape = frame * p_gripper.
  bool touches(ZuShape const& shape, ZuCoordinateSystemTransformation const& frame) {
    for (std::unique_ptr<ZuShape> const& part : m_Parts) {
      m_Memory.setUpdateTime(m_Memory.updateTime() + 1);  // another part, at another place
      if (shape.checkIntersect(*part, frame, m_Pair, m_Memory, nullptr)) return true;
    }
    return false;
  }

 private:
  std::vector<std::unique_ptr<ZuShape>> m_Parts;
  ZuShapeProximityDescriptor m_Pair{ZuShapeStateCacheKey(1, 0, 0), ZuShapeStateCacheKey(0, 0, 0)};
  ZuSystemShapeProximityState m_Memory;
};

/// What stands on the table, z up, its lowest point at height 0.
struct Object {
  std::unique_ptr<ZuShape> solid;  ///< whose approximation the mesh is, when it is from no file
  std::unique_ptr<ZuPolyPhysicalExtent> file;
  ZuBasePhysicalExtent* mesh = nullptr;
  std::string name;
  double height = 0.0;
  ZuVector grasp;
};

/// Moves the object to its place, and finds where to grasp it: in the middle of what is at that height.
void place(Object& object) {
  double low = 1e300, high = -1e300;
  for (ZuVector const& p : object.mesh->points()) {
    low = std::min(low, p.z());
    high = std::max(high, p.z());
  }
  object.mesh->transformBy(ZuCoordinateSystemTransformation(ZuVector::zVector(-low)));
  object.height = high - low;
  ZuVector lowest(1e300, 1e300, 1e300), highest = -lowest;
  for (ZuVector const& p : object.mesh->points()) {
    if (std::abs(p.z() / object.height - theGraspHeight) > theHalfSlice) continue;
    for (unsigned int i = 0; i < 3; ++i) {
      lowest[i] = std::min(lowest[i], p[i]);
      highest[i] = std::max(highest[i], p[i]);
    }
  }
  bool const isEmpty = lowest.x() > highest.x();
  object.grasp = isEmpty ? ZuVector() : (lowest + highest) * 0.5;
  object.grasp[2] = theGraspHeight * object.height;
}

/// Without a mesh, when the file can't be read.
Object loadObject(std::string const& fileName) {
  Object object;
  object.file = loadMesh(fileName, MeshUse::FACES);
  object.mesh = object.file.get();
  object.name = std::filesystem::path(fileName).filename().string();
  return object;
}

Object bottle() {
  Object object;
  object.solid = std::make_unique<ZuCylinder>(ZuLineSegment(ZuVector(), ZuVector(0.0, 0.0, 0.22)), 0.032);
  object.mesh = &object.solid->physicalExtent();
  object.mesh->setUseAABB(true);
  object.name = "a bottle";
  return object;
}

struct Sample {
  ZuOrientation orientation;
  ZuVector from;  ///< where the gripper comes from
  Outcome outcome;
};

std::vector<Sample> tryAll(Object const& object, ZuShape const& table) {
  Gripper gripper;
  Zu600Cell orientations;
  orientations.setupForSampling(theLayersOfOrientations);
  std::vector<Sample> samples;
  for (unsigned int i = 0; i < orientations.totalSampleCount(); ++i) {
    ZuCoordinateSystemTransformation const frame(object.grasp, orientations.sample(i));
    Outcome const outcome = gripper.touches(table, frame)          ? Outcome::TABLE
                            : gripper.touches(*object.mesh, frame) ? Outcome::OBJECT
                                                                   : Outcome::REACHABLE;
    samples.push_back({frame.orientation(), frame.orientation() * ZuVector::zVector(-1.0), outcome});
  }
  return samples;
}

/// What the samples around a direction say of it.
struct Direction {
  ZuVector from;
  double reachable = 0.0;  ///< share
  bool isTheTableWorse = false;

  Color color() const {
    if (reachable == 0.0) return isTheTableWorse ? theTableColor : theObjectColor;
    return theFewColor.mixedWith(theAllColor, reachable);
  }
};

std::vector<Direction> summarise(std::vector<Sample> const& samples, unsigned int layers) {
  ZuTruncatedIcosahedron faces;
  faces.setupForSampling(layers);
  std::vector<Direction> directions(faces.totalSampleCount());
  for (unsigned int i = 0; i < directions.size(); ++i) {
    directions[i].from = faces.sample(i);
    double counts[3] = {0.0, 0.0, 0.0};
    for (Sample const& sample : samples) {
      if (sample.from.dot(directions[i].from) > theNeighborhood) ++counts[static_cast<int>(sample.outcome)];
    }
    directions[i].reachable = counts[0] / std::max(1.0, counts[0] + counts[1] + counts[2]);
    directions[i].isTheTableWorse = counts[1] >= counts[2];
  }
  return directions;
}

/// A disc on which a hemisphere is shown, with equal areas equal (Lambert's azimuthal projection).
class Disc {
 public:
  Disc(Svg& svg, double x, double y, double radius, double side)
      : m_Svg(svg), m_X(x), m_Y(y), m_Radius(radius), m_Side(side) {}

  void draw(std::vector<Direction> const& directions, std::string const& title) const {
    double const dot = 1.5 * m_Radius * std::sqrt(2.0 / static_cast<double>(directions.size()));
    m_Svg.beginClip(m_X, m_Y, m_Radius);
    for (Direction const& d : directions) {
      if (d.from.z() * m_Side < -0.1) continue;
      // Distance from the middle: sqrt(2) sin(angle / 2) of the radius.
      double const away = m_Radius / std::sqrt(1.0 + m_Side * d.from.z());
      m_Svg.circle(m_X + away * d.from.x(), m_Y - away * d.from.y(), dot, d.color());
    }
    m_Svg.endClip();
    m_Svg.ring(m_X, m_Y, m_Radius, theInk);
    m_Svg.text(m_X, m_Y - m_Radius - 18.0, 15, "middle", title);
    m_Svg.text(m_X + m_Radius + 6.0, m_Y + 4.0, 12, "start", "+x");
    m_Svg.text(m_X - m_Radius - 6.0, m_Y + 4.0, 12, "end", "-x");
    m_Svg.text(m_X, m_Y - m_Radius - 4.0, 12, "middle", "+y");
    m_Svg.text(m_X, m_Y + m_Radius + 14.0, 12, "middle", "-y");
  }

 private:
  Svg& m_Svg;
  double m_X, m_Y, m_Radius, m_Side;
};

/// Looks at the object from the front, right and above.
class View {
 public:
  View(double x, double y, double pixelsPerMetre) : m_X(x), m_Y(y), m_Scale(pixelsPerMetre) {}

  double x(ZuVector const& p) const { return m_X + m_Scale * p.dot(m_Right); }
  double y(ZuVector const& p) const { return m_Y - m_Scale * p.dot(m_Up); }
  double left(ZuVector const& p) const { return -p.dot(m_Right); }
  /// Larger is nearer.
  double depth(ZuVector const& p) const { return p.dot(m_Toward); }
  double light(ZuVector const& normal) const {
    return 0.5 + 0.5 * std::max(0.0, normal.dot(ZuVector(0.2, -0.4, 0.9).unitVector()));
  }

 private:
  double m_X, m_Y, m_Scale;
  ZuVector m_Toward = ZuVector(0.5, -0.75, 0.35).unitVector();
  ZuVector m_Right = ZuVector::zVector(1.0).cross(m_Toward).unitVector();
  ZuVector m_Up = m_Toward.cross(m_Right);
};

struct Facet {
  std::array<ZuVector, 3> corners;
  double depth;
};

/// The triangles that face the viewer, the farthest first.
std::vector<Facet> visibleFacets(ZuBasePhysicalExtent const& mesh, View const& view) {
  std::vector<Facet> facets;
  for (unsigned int group = 0; group < mesh.numberOfGroups(); ++group) {
    for (unsigned int f = 0; f < mesh.numberOfFacetsInGroup(group); ++f) {
      for (unsigned int k = 2; k < mesh.numberOfPointsInFacet(group, f); ++k) {
        Facet facet;
        unsigned int const places[3] = {0, k - 1, k};
        for (unsigned int i = 0; i < 3; ++i)
          facet.corners[i] = mesh.point(mesh.getFacetPointIndex(group, f, places[i]));
        ZuVector const normal = (facet.corners[1] - facet.corners[0]).cross(facet.corners[2] - facet.corners[0]);
        if (view.depth(normal) <= 0.0) continue;
        facet.depth = view.depth(facet.corners[0] + facet.corners[1] + facet.corners[2]);
        facets.push_back(facet);
      }
    }
  }
  std::sort(facets.begin(), facets.end(), [](Facet const& a, Facet const& b) { return a.depth < b.depth; });
  return facets;
}

void drawObject(Svg& svg, View const& view, Object const& object) {
  for (Facet const& facet : visibleFacets(*object.mesh, view)) {
    ZuVector const normal =
        (facet.corners[1] - facet.corners[0]).cross(facet.corners[2] - facet.corners[0]).unitVector();
    double xy[6];
    for (unsigned int i = 0; i < 3; ++i) {
      xy[2 * i] = view.x(facet.corners[i]);
      xy[2 * i + 1] = view.y(facet.corners[i]);
    }
    double const light = view.light(normal);
    svg.polygon(xy, 3, {0.75 * light, 0.78 * light, 0.85 * light});
  }
}

/// A line towards the grasp from where the gripper comes, longer for more reachable turns.
void drawApproaches(Svg& svg, View const& view, Object const& object, std::vector<Direction> const& directions,
                    bool areBehind) {
  for (Direction const& d : directions) {
    if (d.reachable == 0.0 || (view.depth(d.from) < 0.0) != areBehind) continue;
    ZuVector const tail = object.grasp + d.from * 0.23, head = object.grasp + d.from * (0.23 - 0.08 * d.reachable);
    svg.line(view.x(tail), view.y(tail), view.x(head), view.y(head), d.color(), 2.5);
    svg.circle(view.x(tail), view.y(tail), 3.5, d.color());
  }
}

/// The gripper as it stands in a sample: those of its bars that are behind the object, or the others.
void drawGripper(Svg& svg, View const& view, Object const& object, Sample const& sample, bool areBehind) {
  ZuCoordinateSystemTransformation const frame(object.grasp, sample.orientation);
  for (Bar const& bar : theBars) {
    ZuVector const low = frame * bar.end(bar.low), high = frame * bar.end(bar.high);
    if ((view.depth(low + high) < 2.0 * view.depth(object.grasp)) != areBehind) continue;
    ZuVector const side = frame.orientation() * ZuVector::xVector(bar.halfX);
    double xy[8];
    ZuVector const corners[4] = {low - side, low + side, high + side, high - side};
    for (unsigned int i = 0; i < 4; ++i) {
      xy[2 * i] = view.x(corners[i]);
      xy[2 * i + 1] = view.y(corners[i]);
    }
    svg.polygon(xy, 4, theGripperColor);
  }
}

/// The reachable sample in which the gripper is seen best: coming from the left, its fingers beside each other.
Sample const* mostVisible(std::vector<Sample> const& samples, View const& view) {
  Sample const* best = nullptr;
  double most = -10.0;
  for (Sample const& sample : samples) {
    double const clear = view.left(sample.from) - std::abs(view.depth(sample.orientation * ZuVector::xVector(1.0)));
    if (sample.outcome != Outcome::REACHABLE || clear <= most) continue;
    most = clear;
    best = &sample;
  }
  return best;
}

void drawTable(Svg& svg, View const& view) {
  constexpr double theReach = 0.2;
  double xy[8];
  for (unsigned int i = 0; i < 4; ++i) {
    ZuVector const corner((i == 0 || i == 3) ? -theReach : theReach, i < 2 ? -theReach : theReach, 0.0);
    xy[2 * i] = view.x(corner);
    xy[2 * i + 1] = view.y(corner);
  }
  svg.polygon(xy, 4, theTopColor);
}

void drawLegend(Svg& svg, double x, double y) {
  constexpr int theSteps = 50;
  svg.text(x, y - 8.0, 13, "start", "share of the turns about the approach that are reachable");
  for (int i = 0; i < theSteps; ++i)
    svg.rectangle(x + 5.0 * i, y, 5.5, 16.0, theFewColor.mixedWith(theAllColor, (i + 0.5) / theSteps));
  svg.text(x, y + 30.0, 12, "start", "few");
  svg.text(x + 5.0 * theSteps, y + 30.0, 12, "end", "all");
  svg.rectangle(x + 300.0, y, 16.0, 16.0, theTableColor);
  svg.text(x + 322.0, y + 13.0, 13, "start", "none: mostly the table is in the way");
  svg.rectangle(x + 300.0, y + 22.0, 16.0, 16.0, theObjectColor);
  svg.text(x + 322.0, y + 35.0, 13, "start", "none: mostly the object is in the way");
}

bool drawPicture(std::string const& fileName, Object const& object, std::vector<Sample> const& samples,
                 std::array<std::size_t, 3> const& counts) {
  Svg svg(1180, 560);
  View const view(280.0, 400.0, 900.0);
  char line[160];
  svg.text(590.0, 30.0, 20, "middle", "From where a gripper reaches " + object.name + " on a table");
  std::snprintf(line, sizeof line,
                "%zu orientations, even over all rotations: %zu reachable, %zu hit the table, %zu hit the object",
                samples.size(), counts[0], counts[1], counts[2]);
  svg.text(590.0, 52.0, 14, "middle", line);
  std::vector<Direction> const few = summarise(samples, 1), many = summarise(samples, theLayersOfDirections);
  drawTable(svg, view);
  Sample const* const shown = mostVisible(samples, view);
  drawApproaches(svg, view, object, few, true);
  if (shown != nullptr) drawGripper(svg, view, object, *shown, true);
  drawObject(svg, view, object);
  drawApproaches(svg, view, object, few, false);
  if (shown != nullptr) drawGripper(svg, view, object, *shown, false);
  svg.text(20.0, 530.0, 13, "start",
           "one of the reachable grasps; pins: approaches, longer where more turns are reachable");
  Disc(svg, 650.0, 270.0, 130.0, 1.0).draw(many, "coming from above");
  Disc(svg, 990.0, 270.0, 130.0, -1.0).draw(many, "coming from below");
  drawLegend(svg, 560.0, 470.0);
  return svg.save(fileName);
}

std::string defaultMesh() {
  char const* const folder = std::getenv("ZU_SHARED");
  return std::string(folder != nullptr ? folder : ZU_SHARED_DIR) + "/data/objects/power_drill.obj";
}

}  // namespace

int main(int argumentCount, char** arguments) {
  std::string const picture = argumentCount > 1 ? arguments[1] : "reachable_grasps.svg";
  std::string const drill = defaultMesh();
  bool const hasFile = argumentCount > 2 || std::filesystem::exists(drill);
  Object object = hasFile ? loadObject(argumentCount > 2 ? arguments[2] : drill) : bottle();
  if (object.mesh == nullptr) return 1;
  place(object);
  ZuHalfSpace const table(ZuPlane(ZuVector(), ZuVector::zVector(1.0)));  // all that is not above its top
  std::vector<Sample> const samples = tryAll(object, table);
  std::array<std::size_t, 3> counts{};
  for (Sample const& sample : samples) ++counts[static_cast<std::size_t>(sample.outcome)];
  std::printf("%s: %zu orientations, %zu reachable, %zu hit the table, %zu hit the object\n", object.name.c_str(),
              samples.size(), counts[0], counts[1], counts[2]);
  if (drawPicture(picture, object, samples, counts)) {
    std::printf("see %s\n", picture.c_str());
    return 0;
  }
  std::fprintf(stderr, "reachableGrasps: %s could not be written\n", picture.c_str());
  return 1;
}
