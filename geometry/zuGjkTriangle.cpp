#include "geometry/zuGjkTriangle.h"

bool ZuGJKTriangle::operator==(ZuGJKTriangle const& other) const {
  for (unsigned int k = 0; k < 3; ++k) {
    if (m_VertexIndices[k] != other.m_VertexIndices[k] || m_Flags[k] != other.m_Flags[k]) return false;
  }
  bool const sameDistance = !(m_Distance < other.m_Distance) && !(other.m_Distance < m_Distance);
  return m_ClosestPoint == other.m_ClosestPoint && sameDistance && m_Barycentric == other.m_Barycentric &&
         m_Valid == other.m_Valid;
}
