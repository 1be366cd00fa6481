// scene.h - bodies with shapes that move through frames: what the programs read.
#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "foundation/zuManipulatorSystem.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCoordinateSystemTransformation.h"
#include "foundation/zuXmlPairType.h"
#include "foundation/zuXmlVectorType.h"
#include "geometry/zuShapeContainer.h"

/// A rigid body: shapes that stand still in its frame, and where it is in each cycle.
class Body : public ZuXmlClass<Body, ZuXmlCompoundType> {
 public:
  std::string const& name() const { return m_Name; }
  unsigned int manipulator() const { return m_Manipulator; }
  unsigned int link() const { return m_Link; }
  ZuShapeContainer const& shapes() const { return m_Shapes; }
  ZuShapeContainer& shapes() { return m_Shapes; }
  std::size_t numberOfFrames() const { return m_Frames.size(); }
  /// Corners of all its meshes.
  std::size_t numberOfVertices() const;
  /// p_world = frame(k) * p_body in cycle k; the last frame holds for all later cycles, no frame is the identity.
  ZuCoordinateSystemTransformation frame(std::size_t cycle) const;

  /// To address a body that no document gives.
  void setKeys(std::string const& name, unsigned int manipulator, unsigned int link);

  bool operator==(Body const& other) const;
  void registerComponents() override;
  static ZuToken const& classToken();
  static Body testObject();

 private:
  ZuXmlBasicType<std::string> m_Name;
  ZuXmlBasicType<unsigned int> m_Manipulator;
  ZuXmlBasicType<unsigned int> m_Link;
  ZuShapeContainer m_Shapes;
  ZuXmlVectorType<ZuXmlCoordinateSystemTransformation> m_Frames;
};

/// Bodies, and the pairs of them that are never compared.
class Scene : public ZuXmlClass<Scene, ZuXmlCompoundType>, public ZuManipulatorSystem {
 public:
  /// Manipulators, and links of one, beyond this are a mistake: every pair of them has its place in memory.
  static constexpr unsigned int m_theMaximumNumber = 10000;

  std::vector<Body> const& bodies() const { return m_Bodies; }
  /// The largest number of frames of a body, at least 1.
  std::size_t numberOfCycles() const;
  /// Whether shapes of the two bodies, given by index, may be compared.
  bool isCompared(std::size_t body1, std::size_t body2) const;
  /// Null when there is no such body. As the result of addBody(), valid until a body is added.
  Body* body(std::string const& name);
  /// A new body without shapes at the origin of the world, the only link of a new manipulator.
  Body& addBody(std::string const& name);

  /// Reads the file and checks that it makes sense; otherwise one line has been printed.
  bool load(std::string const& fileName);
  /// Whether the scene makes sense; otherwise one line has been printed.
  bool check();

  bool operator==(Scene const& other) const { return m_Bodies == other.m_Bodies && m_Ignored == other.m_Ignored; }
  bool readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader) override;
  bool writeElements(ZuXmlWriter& writer) const override;
  static ZuToken const& classToken();
  static Scene testObject();

  // See ZuManipulatorSystem
  unsigned int numberOfManipulators() const override;
  unsigned int numberOfLinks(unsigned int manipulator) const override;
  unsigned int numberOfShapes(unsigned int manipulator, unsigned int link) const override;

 private:
  using Name = ZuXmlBasicType<std::string>;
  bool resolveIgnored();

  std::vector<Body> m_Bodies;
  std::vector<ZuXmlPairType<Name, Name>> m_Ignored;
  std::set<std::pair<std::size_t, std::size_t>> m_IgnoredIndices;
};
