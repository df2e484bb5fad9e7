#ifndef QAL_IO_MESH_H_
#define QAL_IO_MESH_H_

#include <qal/model/pose.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qal::io {

/// A surface of triangles, counter-clockwise seen from outside.
struct Mesh {
  using Vertex = std::array<float, 3>;
  std::vector<Vertex> vertices;   ///< [m], each once
  std::vector<uint32_t> indices;  ///< of the vertices, three a triangle

  size_t triangles() const { return indices.size() / 3; }
};

/// What a coordinate of a mesh may be at most, in whatever unit it has.
constexpr double kLargestCoordinate = 1e6;

/// A mesh of triangles, of which corners in the same place become one vertex.
/// @param corners three a triangle, in whatever unit; one without an area is left out
/// @param scale   to metres, for each axis; where it mirrors, the corners' order is turned
/// @throw UsageError when a coordinate is beyond kLargestCoordinate, before or after
Mesh MeshOf(const std::vector<Vec3>& corners, const Vec3& scale = {1, 1, 1});

/// A box about the origin.
/// @param size [m]
Mesh BoxMesh(const Vec3& size);
/// A cylinder about the z axis, from -length / 2 to length / 2 [m].
Mesh CylinderMesh(double radius, double length);
/// A sphere about the origin [m].
Mesh SphereMesh(double radius);

}  // namespace qal::io

#endif  // QAL_IO_MESH_H_
