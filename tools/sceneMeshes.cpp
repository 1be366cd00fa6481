#include "tools/sceneMeshes.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include "foundation/zuPrint.h"

namespace {

namespace fs = std::filesystem;

/// The file as it stands when there is none such: to be told by who opens it.
std::string soughtBeside(fs::path const& table, std::string const& name) {
  for (fs::path const& folder : {table.parent_path(), table.parent_path() / "meshes"}) {
    for (char const* const ending : {"", ".obj", ".stl"}) {
      fs::path const candidate = folder / (name + ending);
      std::error_code ignored;
      if (fs::is_regular_file(candidate, ignored)) return candidate.string();
    }
  }
  return (table.parent_path() / name).string();
}

/// None when the words are not those of a line.
std::optional<MeshSource> parseLine(fs::path const& table, std::istringstream& words) {
  MeshSource source;
  std::vector<double> numbers;
  words >> source.body >> source.fileName;
  if (!words) return {};
  for (double number = 0.0; words >> number;) numbers.push_back(number);
  bool const hasOrientation = numbers.size() == 7;
  if (!words.eof() || !(numbers.empty() || numbers.size() == 3 || hasOrientation)) return {};
  numbers.resize(3 + 4 * hasOrientation);
  source.fileName = soughtBeside(table, source.fileName);
  source.frame.setTranslation(ZuVector(numbers[0], numbers[1], numbers[2]));
  if (hasOrientation) {
    if (numbers[3] == 0.0 && numbers[4] == 0.0 && numbers[5] == 0.0 && numbers[6] == 0.0) return {};
    source.frame.setOrientation(ZuOrientation(numbers[3], numbers[4], numbers[5], numbers[6]));
  }
  return source;
}

Body* bodyOf(Scene& scene, MeshSource const& source) {
  if (source.body.empty()) return &scene.addBody(fs::path(source.fileName).stem().string());
  Body* const body = scene.body(source.body);
  if (body == nullptr) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "addMeshes-->no body is named \"%s\"", source.body.c_str());
  }
  return body;
}

}  // namespace

bool readMeshTable(std::string const& fileName, std::vector<MeshSource>& sources) {
  std::ifstream file(fileName);
  unsigned int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    line.resize(std::min(line.find('#'), line.size()));
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    std::istringstream words(line);
    std::optional<MeshSource> const source = parseLine(fileName, words);
    if (!source) {
      Zu::Print::instance().write(Zu::PRINT_WARNING, "readMeshTable-->%s, line %u: not BODY FILE [x y z [qw qx qy qz]]",
                                  fileName.c_str(), number);
      return false;
    }
    sources.push_back(*source);
  }
  if (number == 0) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "readMeshTable-->%s: not there, or empty", fileName.c_str());
  }
  return number != 0;
}

bool addMeshes(Scene& scene, std::vector<MeshSource> const& sources, MeshUse use) {
  std::set<std::string> replaced;
  for (MeshSource const& source : sources) {
    Body* const body = bodyOf(scene, source);
    if (body == nullptr) return false;
    std::unique_ptr<ZuPolyPhysicalExtent> mesh = loadMesh(source.fileName, use);
    if (mesh == nullptr) return false;
    mesh->transformBy(source.frame);
    if (replaced.insert(body->name()).second) body->shapes() = ZuShapeContainer();
    body->shapes().append(std::move(mesh));
  }
  return scene.check();
}
