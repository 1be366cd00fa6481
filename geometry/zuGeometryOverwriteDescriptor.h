// zuGeometryOverwriteDescriptor.h - what replaces parts of the geometry that a mesh was given. Group: meshes.
#pragma once

#include <string>

#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlCoordinateSystemTransformation.h"
#include "foundation/zuXmlVector.h"
#include "foundation/zuXmlVectorVector.h"

/// What the owner of a mesh wants different from the file or the list that the mesh came from: its size, its place, the
/// side of its facets, its surface. The default changes nothing. A record only: it acts where its functions are called.
///
/// Points become frame * (scale, component by component). Scales are finite; one below 0 mirrors the mesh, and 0 makes
/// it flat. Mirrored facets would turn their inside out: reversesFacets() says when corners are to be put in the other
/// order, so that facets that faced outwards still do.
///
/// Copying allocates nothing as long as the key is short. As thread-safe as a double.
class ZU_API ZuGeometryOverwriteDescriptor : public ZuXmlClass<ZuGeometryOverwriteDescriptor, ZuXmlCompoundType> {
 public:
  ZuGeometryOverwriteDescriptor() = default;

  /// Factors along the axes of the mesh as it came, for instance 0.001 each for a file in millimetres.
  ZuVector const& scale() const { return m_Scale; }
  /// A factor that is not finite prints a message and changes nothing.
  void setScale(ZuVector const& scale);
  /// Takes scaled points into the frame of the mesh.
  ZuCoordinateSystemTransformation const& frame() const { return m_Frame.value(); }
  void setFrame(ZuCoordinateSystemTransformation const& frame) { m_Frame.setValue(frame); }
  /// True when the mesh came with its facets inside out.
  bool reverse() const { return m_Reverse; }
  void setReverse(bool reverse) { m_Reverse = reverse; }
  /// Key of the surface of all facets; empty when each group keeps its own.
  std::string const& surfaceKey() const { return m_SurfaceKey.value(); }
  void setSurfaceKey(std::string const& key) { m_SurfaceKey = key; }

  /// True when points, normals and the order of corners stay as they are.
  bool keepsGeometry() const;
  /// True when corners are to be put in the opposite order: asked for, or the scale mirrors, but not both.
  bool reversesFacets() const;
  ZuVector point(ZuVector const& point) const;
  /// The unit normal that a facet or point has afterwards; the zero vector where a flat scale leaves none.
  ZuVector normal(ZuVector const& normal) const;
  /// Applies point() to a list, and normal() to another.
  void overwrite(ZuXmlVectorVector& points, ZuXmlVectorVector& normals) const;

  bool operator==(ZuGeometryOverwriteDescriptor const& other) const;

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuGeometryOverwriteDescriptor testObject();

 private:
  bool mirrors() const;

  ZuXmlVector m_Scale{ZuVector(1.0, 1.0, 1.0)};
  ZuXmlCoordinateSystemTransformation m_Frame;
  ZuXmlBasicType<bool> m_Reverse;
  ZuXmlBasicType<std::string> m_SurfaceKey;
};
