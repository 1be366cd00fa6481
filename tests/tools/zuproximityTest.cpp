// The program on the scenes that the repository ships, on real robots when they are there, and on bad input.
#include <sys/wait.h>

#include <Eigen/Geometry>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <set>
#include <sstream>

#include "geometry/zuCapsule.h"
#include "geometry/zuRobustGjk.h"
#include "geometry/zuSphere.h"
#include "tests/sharedFiles.h"
#include "tests/temporaryFolder.h"
#include "tests/testValues.h"
#include "tools/proximityStudy.h"
#include "tools/scene.h"
#include "tools/sceneMeshes.h"

namespace {

struct Outcome {
  int exitCode;
  std::string output;
};

/// Tests may run at the same time, each in its own process.
std::string temporary(std::string const& name) {
  static TemporaryFolder const theFolder;
  return theFolder.file(name);
}

Outcome run(std::string const& command) {
  std::string const output = temporary("output");
  int const status = std::system(("(" + command + ") >" + output).c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(output)};
}

testing::AssertionResult says(Outcome const& outcome, std::string const& part, int exitCode = 0) {
  bool const asTold = outcome.exitCode == exitCode && outcome.output.find(part) != std::string::npos;
  return (asTold ? testing::AssertionSuccess() : testing::AssertionFailure())
         << part << " in " << outcome.output << "exit code " << outcome.exitCode;
}

std::string written(std::string const& name, std::string const& text) {
  std::ofstream(temporary(name), std::ios::binary) << text;
  return temporary(name);
}

using Wide = Eigen::Matrix<long double, 3, 1>;

Wide triple(char const* text) {
  std::istringstream stream(text);
  Wide v = Wide::Zero();
  stream >> v[0] >> v[1] >> v[2];
  return v;
}

/// The least distance in a cycle of a scene of spheres, by a reading and a computation of its own.
long double closestOfSpheres(pugi::xml_node const& scene, std::size_t cycle) {
  struct Ball {
    std::string body;
    Wide center;
    long double radius;
  };
  std::set<std::set<std::string>> ignored;
  for (pugi::xml_node const pair : scene.children("ignoredPair"))
    ignored.insert({pair.child_value("first"), pair.child_value("second")});
  std::vector<Ball> balls;
  long double best = 1e300L;
  for (pugi::xml_node const body : scene.children("body")) {
    pugi::xml_node frame = body.child("frames").first_child();
    for (std::size_t k = 0; k < cycle && frame.next_sibling(); ++k) frame = frame.next_sibling();
    Eigen::Quaternion<long double> q(1, 0, 0, 0);
    std::istringstream(frame.child_value("orientation")) >> q.w() >> q.x() >> q.y() >> q.z();
    q.normalize();
    std::vector<Ball> placed;
    for (pugi::xml_node const sphere : body.child("shapes").children("sphere")) {
      Wide const center = q * triple(sphere.child_value("center")) + triple(frame.child_value("translation"));
      placed.push_back({body.child_value("name"), center, std::strtold(sphere.child_value("radius"), nullptr)});
    }
    for (Ball const& a : balls) {
      if (ignored.count({a.body, body.child_value("name")}) != 0) continue;
      for (Ball const& b : placed) best = std::min(best, (a.center - b.center).norm() - a.radius - b.radius);
    }
    balls.insert(balls.end(), placed.begin(), placed.end());
  }
  return best;
}

/// A margin hides only what is beyond it.
void expectSameWithMargin(std::string const& fileName, double margin, double tolerance) {
  Scene scene;
  ASSERT_TRUE(scene.load(fileName));
  ProximityStudy all(scene, ProximityStudy::m_theNoMargin), narrow(scene, margin);
  for (std::size_t cycle = 0; cycle < scene.numberOfCycles(); ++cycle) {
    CycleResult const expected = all.next(), result = narrow.next();
    ASSERT_TRUE(expected.found);
    ASSERT_EQ(result.found, expected.closest.distance <= margin) << "cycle " << cycle;
    EXPECT_TRUE(!result.found || std::abs(result.closest.distance - expected.closest.distance) <= tolerance) << cycle;
    ASSERT_LT(result.pairsAsked, expected.pairsAsked);
  }
  EXPECT_TRUE(all.unanswered().empty());
}

void expectAgreement(std::string const& fileName) {
  Scene scene;
  ASSERT_TRUE(scene.load(fileName));
  pugi::xml_document document;
  ASSERT_TRUE(document.load_file(fileName.c_str()));
  ProximityStudy study(scene, ProximityStudy::m_theNoMargin);
  for (std::size_t cycle = 0; cycle < scene.numberOfCycles(); ++cycle) {
    CycleResult const result = study.next();
    ASSERT_NEAR(result.closest.distance, static_cast<double>(closestOfSpheres(document.child("scene"), cycle)), 1e-12);
    ASSERT_NEAR(result.closest.point1.distanceTo(result.closest.point2), std::abs(result.closest.distance), 1e-12);
  }
}

/// The scene of a real robot; empty when there are none.
std::string realScene(std::string const& arguments) {
  std::string const script = sharedFile("tools/scene_from_tables.py"), file = temporary("real.xml");
  if (!std::filesystem::exists(script)) return {};
  Outcome const made = run("python3 " + script + " " + sharedFile("data/robots/") + arguments + " > " + file);
  return made.exitCode == 0 ? file : "";
}

/// A prism over an L, of faces that are not convex, with its notch towards (2, 2).
std::string notchedObj() {
  return written("notched.obj",
                 "v 0 0 0\nv 2 0 0\nv 2 1 0\nv 1 1 0\nv 1 2 0\nv 0 2 0\nv 0 0 1\nv 2 0 1\nv 2 1 1\nv 1 1 1\nv 1 2 1\n"
                 "v 0 2 1\nf 6 5 4 3 2 1\nf 7 8 9 10 11 12\nf 1 2 8 7\nf 2 3 9 8\nf 3 4 10 9\nf 4 5 11 10\n"
                 "f 5 6 12 11\nf 6 1 7 12\n");
}

/// A cube with an edge of 0.2 and a corner at the origin.
std::string cubeStl() {
  std::string text = "solid cube\n";
  for (char const* const face : {"026", "064", "157", "173", "045", "051", "237", "276", "013", "032", "467", "475"}) {
    text += "facet normal 0 0 0\nouter loop\n";
    for (char const* c = face; *c != 0; ++c) {
      text += "vertex";
      for (int const axis : {1, 2, 4}) text += ((*c - '0') & axis) != 0 ? " 0.2" : " 0";
      text += '\n';
    }
    text += "endloop\nendfacet\n";
  }
  return written("cube.stl", text + "endsolid cube\n");
}

/// Answers for no pair, and no pair answers for it.
class MuteSolid : public ZuSphere {
 public:
  using ZuSphere::ZuSphere;
  ZuShapeValues type() const override { return EXTENT_UNION; }
  double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const&,
                                    ZuShapeProximityDescriptor const&, ZuSystemShapeProximityState&, ZuVector&,
                                    ZuVector&) const override {
    printNotSupported("MuteSolid::distanceAndWitnessPointsTo-->Distance", other);
    return 0.0;
  }
};

}  // namespace

TEST(Zuproximity, ScenesOfSpheresAgreeWithAnIndependentComputation) {
  expectAgreement(ZU_EXAMPLES_DIR "/two_arms.xml");
  std::string const file = realScene("panda --model spheres --second 0.9 0 3.14159 --steps 100");
  if (file.empty()) GTEST_SKIP() << "no real robots, or no python3";
  expectAgreement(file);
}

TEST(Zuproximity, AMarginChangesNoAnswerOnRealRobots) {
  std::string const arms = realScene("panda --model spheres --second 0.9 0 3.14159 --steps 1000");
  if (arms.empty()) GTEST_SKIP() << "no real robots, or no python3";
  expectSameWithMargin(arms, 0.05, 0.0);
  ZuShape::setGjkEnginePrototype(ZuRobustGJK());
  for (char const* const robot :
       {"panda --scene bookshelf_small_panda_0 --steps 5", "shadow_hand --steps 5", "go2 --steps 20"}) {
    SCOPED_TRACE(robot);
    expectSameWithMargin(realScene(robot), 0.05, 1e-9);
  }
  ZuShape::setGjkEnginePrototype(ZuGJK());
}

TEST(Zuproximity, MeshFilesAreTakenAsHullsOrAsTheyAre) {
  std::string const document =
      written("bodies.xml", "<scene><body><name>a</name></body><body><name>b</name><link>1</link></body></scene>");
  notchedObj();
  // The turn takes x, y, z to -z, -y, -x: the cube fills 1.3 to 1.5 on x and y, 0.4 to 0.6 on z.
  std::string const table =
      written("meshes.txt", "# body file pose\na notched\n\nb " + cubeStl() + " 1.5 1.5 0.6 0 3 0 -3 # turned\n");
  for (MeshUse const use : {MeshUse::HULL, MeshUse::FACES}) {
    Scene scene;
    std::vector<MeshSource> sources;
    ASSERT_TRUE(scene.load(document) && readMeshTable(table, sources) && addMeshes(scene, sources, use));
    EXPECT_EQ(scene.bodies()[0].numberOfVertices(), use == MeshUse::HULL ? 10U : 12U);
    EXPECT_EQ(scene.bodies()[1].numberOfVertices(), 8U) << "corners are joined";
    double const distance = use == MeshUse::HULL ? -0.4 / std::sqrt(2.0) : 0.3;
    EXPECT_NEAR(ProximityStudy(scene, 1.0).next().closest.distance, distance, 1e-7);
  }
}

TEST(Zuproximity, TheMeshArmMovesAmongItself) {
  std::string const file = realScene("panda --model spheres --steps 10"), saved = temporary("saved.xml");
  if (file.empty()) GTEST_SKIP() << "no real robots, or no python3";
  std::string const arm = ZUPROXIMITY " --summary " + file + " --meshes " + sharedFile("data/robots/panda/meshes.txt");
  Outcome const outcome = run(arm + " --save " + saved);
  EXPECT_TRUE(says(outcome, "vertices      1204: panda_link0 102, "));
  EXPECT_TRUE(says(outcome, "panda_link7[0] - panda_leftfinger[0]  distance 0.0597"));
  auto const untimed = [](std::string const& text) { return text.substr(0, text.find("time a cycle")); };
  EXPECT_EQ(untimed(run(ZUPROXIMITY " --summary " + saved).output), untimed(outcome.output));
  for (char const* const other : {" --exact-meshes", " --engine default"}) {
    EXPECT_EQ(untimed(run(arm + other).output), untimed(outcome.output)) << other << ": the meshes are nearly convex";
  }
}

TEST(Zuproximity, PairsAreAskedInTheOrderThatIsAnsweredAndToldInThatOfTheScene) {
  Scene scene;
  scene.addBody("ball").shapes().append(std::make_unique<ZuSphere>(ZuVector(0, 0, 0), 1.0, 3));
  scene.addBody("rod").shapes().append(std::make_unique<ZuCapsule>(ZuLineSegment({5, 0, 0}, {9, 0, 0}), 0.5));
  scene.addBody("mute").shapes().append(std::make_unique<MuteSolid>(ZuVector(0, 1, 0), 1.0, 3));
  ProximityStudy study(scene, ProximityStudy::m_theNoMargin);
  testing::internal::CaptureStderr();
  CycleResult const result = study.next();
  study.next();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(study.unanswered(), (std::set<std::string>{"sphere - sphere", "capsule - sphere"}));
  EXPECT_TRUE(result.pairsAsked == 1U && result.closest.distance == 3.5);
  EXPECT_TRUE(result.closest.body1 == 0 && result.closest.point1.approxEq({1, 0, 0}, 1e-12));
  EXPECT_TRUE(result.closest.body2 == 1 && result.closest.point2.approxEq({4.5, 0, 0}, 1e-12));
}

TEST(Zuproximity, ReportsEveryCycleAsTextAndAsTable) {
  EXPECT_TRUE(Scene::testObject().selfTest() && Body::testObject().selfTest()) << "not read back";
  std::string const csv = temporary("out.csv");
  Outcome const all = run(ZUPROXIMITY " " ZU_EXAMPLES_DIR "/two_arms.xml --cycles 3 --csv " + csv + " 2>&1");
  EXPECT_TRUE(says(all, "cycle 2: ") && says(all, "closest       cycle "));
  EXPECT_EQ(all.output.find('\r'), std::string::npos) << "no progress bar in a file";
  std::ifstream table(csv);
  std::size_t lines = 0;
  for (std::string line; std::getline(table, line); ++lines)
    EXPECT_EQ(std::count(line.begin(), line.end(), ','), 12) << line;
  EXPECT_EQ(lines, 4U);
  EXPECT_TRUE(says(run(ZUPROXIMITY " --summary --margin 0.01 --cycles 1 " ZU_EXAMPLES_DIR "/two_arms.xml"),
                   "closest       none within the margin"));
}

TEST(Zuproximity, BadInputIsOneClearLineAndExitCodeTwo) {
  std::string const body = "<body><name>a</name><shapes><sphere/></shapes></body>";
  std::pair<std::string, char const*> const theCases[] = {
      {"/nonexistent/scene.xml", "No such file"},
      {written("element.xml", "<scene>\n\n<robot/></scene>"), "line 3"},
      {written("twice.xml", "<scene>" + body + "<body><name>b</name></body></scene>"), "a second link 0"},
      {written("names.xml", "<scene>" + body + "<body><name>a</name><link>1</link></body></scene>"), "named \"a\""},
      {written("ignored.xml",
               "<scene>" + body + "<ignoredPair><first>a</first><second>z</second></ignoredPair></scene>"),
       "named \"z\""},
      {written("huge.xml", "<scene><body><manipulator>4000000000</manipulator></body></scene>"), "not below"},
      {written("nan.xml", "<scene><body><shapes><sphere><radius>nan</radius></sphere></shapes></body></scene>"),
       "not finite"},
      {"--cycles 0 x.xml", "--cycles takes"},
      {"--margin -1 x.xml", "--margin takes"},
      {"--margin", "needs a value"},
      {"--frobnicate x.xml", "unknown option"},
      {"", "no scene"},
      {"--engine fast x.xml", "--engine takes"},
      {"--mesh =x.obj", "--mesh takes"},
      {"--mesh a=" + notchedObj(), "named \"a\""},
      {"--mesh /nonexistent/x.obj", "No such file"},
      {"--mesh " + written("x.off", "OFF\n3000000000 4 0\n"), "not an .obj"},
      {"--mesh " + written("empty.obj", ""), "too small"},
      {"--mesh " + written("index.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n"), "out of range"},
      {"--mesh " + written("nan.obj", "v nan 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"), "not finite"},
      {"--mesh " + written("flat.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nf 1 2 3\nf 1 3 4\n"), "no volume"},
      {"--mesh " + written("short.stl", std::string(80, ' ') + std::string(30, '\377')), "STL"},
      {"--meshes /nonexistent/table", "not there"},
      {"--meshes " + written("table.txt", "# body file\na b.obj 1 2\n"), "line 2"},
      {ZU_EXAMPLES_DIR "/two_arms.xml --csv /nonexistent/out.csv", "/nonexistent/out.csv"}};
  for (auto const& [arguments, expected] : theCases) {
    Outcome const outcome = run(ZUPROXIMITY " " + arguments + " 2>&1");
    EXPECT_TRUE(says(outcome, expected, 2)) << arguments;
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1) << outcome.output;
  }
}
