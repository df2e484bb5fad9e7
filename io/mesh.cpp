#include "mesh.h"

#include <fmt/format.h>

#include <cmath>
#include <map>

#include "../solver/closed_form/angles.h"
#include "error.h"

namespace qal::io {

namespace {

constexpr int kSides = 32;  // of what is round

void AddTriangle(const Vec3& a, const Vec3& b, const Vec3& c, std::vector<Vec3>& corners) {
  corners.insert(corners.end(), {a, b, c});
}

void AddQuad(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d,
             std::vector<Vec3>& corners) {
  AddTriangle(a, b, c, corners);
  AddTriangle(a, c, d, corners);
}

// Around the z axis: the ring at a height, from side to side.
Vec3 OnRing(double radius, double z, int side) {
  const double angle = 2 * closed_form::kPi * (side % kSides) / kSides;
  return {radius * std::cos(angle), radius * std::sin(angle), z};
}

float Coordinate(double value, double scale) {
  const double scaled = value * scale;
  if (!(std::fabs(value) <= kLargestCoordinate && std::fabs(scaled) <= kLargestCoordinate)) {
    throw UsageError(
        fmt::format("a coordinate of {:g}; up to {:g} are expected", value, kLargestCoordinate));
  }
  return static_cast<float>(scaled) + 0.0F;  // no -0: it would be another place than 0
}

}  // namespace

Mesh MeshOf(const std::vector<Vec3>& corners, const Vec3& scale) {
  Mesh mesh;
  std::map<Mesh::Vertex, uint32_t> places;
  const bool mirrors = scale.x * scale.y * scale.z < 0;
  const size_t order[] = {0, mirrors ? size_t{2} : 1, mirrors ? size_t{1} : 2};
  for (size_t i = 0; i + 3 <= corners.size(); i += 3) {
    uint32_t triangle[3] = {};
    for (size_t j = 0; j < 3; ++j) {
      const Vec3& corner = corners[i + order[j]];
      const Mesh::Vertex vertex = {Coordinate(corner.x, scale.x), Coordinate(corner.y, scale.y),
                                   Coordinate(corner.z, scale.z)};
      const auto [place, is_new] =
          places.emplace(vertex, static_cast<uint32_t>(mesh.vertices.size()));
      if (is_new) mesh.vertices.push_back(vertex);
      triangle[j] = place->second;
    }
    const auto& [a, b, c] = triangle;
    if (a == b || b == c || c == a) continue;
    mesh.indices.insert(mesh.indices.end(), {a, b, c});
  }
  return mesh;
}

Mesh BoxMesh(const Vec3& size) {
  const auto corner = [&size](int x, int y, int z) {
    return Vec3{x * size.x / 2, y * size.y / 2, z * size.z / 2};
  };
  std::vector<Vec3> corners;
  for (const int side : {-1, 1}) {
    // Seen from outside, the other two axes in this order go around counter-clockwise.
    const int other = -side;
    AddQuad(corner(side, -1, other), corner(side, 1, other), corner(side, 1, side),
            corner(side, -1, side), corners);
    AddQuad(corner(other, side, -1), corner(other, side, 1), corner(side, side, 1),
            corner(side, side, -1), corners);
    AddQuad(corner(-1, other, side), corner(1, other, side), corner(1, side, side),
            corner(-1, side, side), corners);
  }
  return MeshOf(corners);
}

Mesh CylinderMesh(double radius, double length) {
  std::vector<Vec3> corners;
  const double top = length / 2;
  for (int side = 0; side < kSides; ++side) {
    AddQuad(OnRing(radius, -top, side), OnRing(radius, -top, side + 1),
            OnRing(radius, top, side + 1), OnRing(radius, top, side), corners);
    AddTriangle({0, 0, top}, OnRing(radius, top, side), OnRing(radius, top, side + 1), corners);
    AddTriangle({0, 0, -top}, OnRing(radius, -top, side + 1), OnRing(radius, -top, side), corners);
  }
  return MeshOf(corners);
}

Mesh SphereMesh(double radius) {
  constexpr int kRings = kSides / 2;
  std::vector<Vec3> corners;
  const auto at = [radius](int ring, int side) {
    // The poles exactly: each is one vertex.
    if (ring == 0 || ring == kRings) return Vec3{0, 0, ring == 0 ? -radius : radius};
    const double angle = closed_form::kPi * ring / kRings;
    return OnRing(radius * std::sin(angle), -radius * std::cos(angle), side);
  };
  for (int ring = 0; ring < kRings; ++ring) {
    for (int side = 0; side < kSides; ++side) {
      AddQuad(at(ring, side), at(ring, side + 1), at(ring + 1, side + 1), at(ring + 1, side),
              corners);
    }
  }
  return MeshOf(corners);
}

}  // namespace qal::io
