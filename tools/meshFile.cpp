#include "tools/meshFile.h"

#include <assimp/scene.h>

#include <array>
#include <assimp/Importer.hpp>
#include <cmath>
#include <exception>
#include <filesystem>
#include <map>

#include "foundation/zuPrint.h"
#include "geometry/zuConvexHull.h"

namespace {

/// Larger files are a mistake: collision meshes have thousands of faces. Bounds the memory of the import.
std::uintmax_t constexpr theLargestFile = 256U << 20;  // bytes

std::nullptr_t refuse(std::string const& fileName, std::string const& what) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "loadMesh-->%s: %s", fileName.c_str(), what.c_str());
  return nullptr;
}

/// Empty when the file may be given to the importer. Those for other formats run away on broken files: they make room
/// for as many corners as a header promises, or never end.
std::string objection(std::string const& fileName) {
  std::error_code error;
  std::uintmax_t const size = std::filesystem::file_size(fileName, error);
  if (error) return error.message();
  if (size > theLargestFile) return "larger than " + std::to_string(theLargestFile >> 20) + " MB";
  std::string ending = std::filesystem::path(fileName).extension().string();
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ending == ".obj" || ending == ".stl" ? "" : "not an .obj or .stl file";
}

/// Collects the faces of a file. Corners in one place, bit for bit, are joined: files of separate triangles have each
/// some six times. The importer's own steps for that are left out, since they trust the indices of a file.
class Collector {
 public:
  explicit Collector(ZuPolyPhysicalExtent& extent) : m_Extent(extent) { extent.addGroup(""); }

  /// What is wrong with the mesh; empty when it was taken.
  char const* add(aiMesh const& mesh) {
    std::vector<unsigned int> places, loop;
    for (unsigned int i = 0; i < mesh.mNumVertices; ++i) {
      aiVector3D const& v = mesh.mVertices[i];
      if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) return "a corner is not finite";
      places.push_back(m_Places.try_emplace({v.x, v.y, v.z}, static_cast<unsigned int>(m_Places.size())).first->second);
      if (m_Places.size() > m_Points.size()) m_Points.pushBack(ZuVector(v.x, v.y, v.z));
    }
    for (unsigned int i = 0; i < mesh.mNumFaces; ++i) {
      aiFace const& face = mesh.mFaces[i];
      if (face.mNumIndices < 3) continue;
      loop.clear();
      for (unsigned int k = 0; k < face.mNumIndices; ++k) {
        if (face.mIndices[k] >= places.size()) return "a face has a corner that is not there";
        loop.push_back(places[face.mIndices[k]]);
      }
      m_Extent.addFacet(0, loop);
    }
    return "";
  }
  void finish() { m_Extent.setPoints(m_Points); }

 private:
  ZuPolyPhysicalExtent& m_Extent;
  std::map<std::array<ai_real, 3>, unsigned int> m_Places;
  ZuXmlVectorVector m_Points;
};

std::unique_ptr<ZuPolyPhysicalExtent> convert(std::string const& fileName, aiScene const& scene, MeshUse use) {
  auto extent = std::make_unique<ZuPolyPhysicalExtent>();
  Collector collector(*extent);
  for (unsigned int i = 0; i < scene.mNumMeshes; ++i) {
    std::string const problem = collector.add(*scene.mMeshes[i]);
    if (!problem.empty()) return refuse(fileName, problem);
  }
  if (extent->totalNumberOfFacets() == 0) return refuse(fileName, "no faces");
  collector.finish();
  if (use == MeshUse::FACES) {
    extent->setIsConvex(false);
    extent->setUseAABB(true);
    return extent;
  }
  ZuXmlVectorVector corners;
  extent->usedPoints(corners);
  if (!ZuConvexHull::spansVolume(corners.data(), corners.size())) {
    return refuse(fileName, "flat: its corners span no volume");
  }
  return extent->convexHull(corners) ? std::move(extent) : nullptr;
}

}  // namespace

std::unique_ptr<ZuPolyPhysicalExtent> loadMesh(std::string const& fileName, MeshUse use) {
  std::string const problem = objection(fileName);
  if (!problem.empty()) return refuse(fileName, problem);
  try {
    Assimp::Importer importer;
    aiScene const* const scene = importer.ReadFile(fileName, 0);
    if (scene == nullptr) return refuse(fileName, importer.GetErrorString());
    return convert(fileName, *scene, use);
  } catch (std::exception const& failure) {  // out of memory, mostly
    return refuse(fileName, failure.what());
  }
}
