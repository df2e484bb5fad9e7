#include "report_bodies.h"

#include <fmt/format.h>
#include <qal/model/lines.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "error.h"
#include "files.h"
#include "limits.h"
#include "messages.h"
#include "number_bytes.h"
#include "stl.h"
#include "urdf.h"
#include "urdf_visuals.h"

namespace qal::io {

namespace {

namespace fs = std::filesystem;

// Where a mesh may be within a folder.
std::vector<fs::path> NamesOf(const std::string& name) {
  constexpr std::string_view kPackage = "package://";
  if (name.rfind(kPackage, 0) != 0) return {name};
  const std::string in_package = name.substr(kPackage.size());
  // The package's folder mostly has its name, but needn't.
  const size_t slash = std::min(in_package.find('/'), in_package.size());
  return {in_package, in_package.substr(std::min(slash + 1, in_package.size()))};
}

std::string FindMesh(const std::string& name, const std::string& urdf) {
  constexpr std::string_view kFile = "file://";
  const std::string path = name.rfind(kFile, 0) == 0 ? name.substr(kFile.size()) : name;
  std::error_code error;
  fs::path folder = fs::absolute(urdf, error).parent_path();
  while (true) {
    for (const fs::path& candidate : NamesOf(path)) {
      const fs::path file = folder / candidate;  // an absolute one as it is
      if (fs::is_regular_file(file, error)) return file.lexically_normal().string();
    }
    if (!folder.has_relative_path()) break;
    folder = folder.parent_path();
  }
  throw UsageError("no such file there or in a folder above");
}

Mesh ReadMesh(const MeshFile& mesh, const std::string& urdf, size_t most) {
  try {
    std::string ending = fs::path(mesh.name).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ending != ".stl") throw UsageError("only meshes in STL files are drawn");
    return MeshOf(ParseStl(ReadFile(FindMesh(mesh.name, urdf), kLargestMesh), most), mesh.scale);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: {}", mesh.name, error.what()));
  }
}

Mesh MeshOfVisual(const UrdfVisual& visual, const std::string& urdf, size_t most) {
  if (const auto* file = std::get_if<MeshFile>(&visual.shape)) return ReadMesh(*file, urdf, most);
  if (const auto* box = std::get_if<BoxShape>(&visual.shape)) return BoxMesh(box->size);
  if (const auto* sphere = std::get_if<SphereShape>(&visual.shape)) {
    return SphereMesh(sphere->radius);
  }
  const auto& cylinder = std::get<CylinderShape>(visual.shape);
  return CylinderMesh(cylinder.radius, cylinder.length);
}

Json BodyJson(const UrdfVisual& visual, const Transform& placement, const Mesh& mesh) {
  NumberBytes positions;
  for (const Mesh::Vertex& vertex : mesh.vertices) {
    for (const float coordinate : vertex) positions.Add(coordinate);
  }
  NumberBytes indices;
  for (const uint32_t index : mesh.indices) indices.Add(index);
  Json rows = Json::array();
  const Vec3& p = placement.position;
  for (size_t row = 0; row < 3; ++row) {
    for (size_t i = 0; i < 3; ++i) rows.push_back(placement.rotation[3 * row + i]);
    rows.push_back(row == 0 ? p.x : row == 1 ? p.y : p.z);
  }
  return {{"link", visual.link},
          {"placement", std::move(rows)},
          {"positions", positions.Text()},
          {"indices", indices.Text()},
          {"color", visual.color ? Json(*visual.color) : Json()}};
}

// A solver library may be of another arm than the URDF, whose meshes would then hang in the air.
bool AreOf(const UrdfSource& urdf, const Transform& base, const std::array<AxisLine, 6>& axes) {
  constexpr double kSameM = 1e-3;
  constexpr double kSameRad = 1e-3;
  Transform turn = base;
  turn.position = {0, 0, 0};
  const std::array<AxisLine, 6> described =
      AxesAtZero(ReadUrdf(urdf.text, urdf.path, urdf.options));
  for (size_t j = 0; j < axes.size(); ++j) {
    Transform point, direction;
    point.position = described[j].point;
    direction.position = described[j].direction;
    const Line axis = {ToVector(axes[j].point), ToVector(axes[j].direction)};
    if (DistanceFrom(axis, ToVector((base * point).position)) > kSameM) return false;
    if (Length(axis.direction - ToVector((turn * direction).position)) > kSameRad) return false;
  }
  return true;
}

}  // namespace

ReportBodies ReportBodiesOf(const LoadedArm& loaded, const std::array<AxisLine, 6>& axes,
                            const char* whose) {
  ReportBodies made;
  if (!loaded.urdf) return made;
  if (!AreOf(*loaded.urdf, loaded.arm.base(), axes)) {
    made.notes.push_back(fmt::format(
        "{}: the axes are not those of {}, and so what the links look like is not drawn",
        loaded.urdf->path, whose));
    return made;
  }
  const UrdfVisuals read = ReadVisuals(*loaded.urdf);
  made.notes = read.notes;
  size_t left = kMostTriangles;
  for (const UrdfVisual& visual : read.visuals) {
    try {
      const Mesh mesh = MeshOfVisual(visual, loaded.urdf->path, left);
      if (mesh.triangles() > left) {
        throw UsageError(fmt::format("more than {} triangles in all", kMostTriangles));
      }
      left -= mesh.triangles();
      made.bodies.push_back(BodyJson(visual, loaded.arm.base() * visual.placement, mesh));
    } catch (const UsageError& error) {
      made.notes.push_back(OneLine(
          fmt::format("link '{}' is not drawn: {}", NameText(visual.link_name), error.what())));
    }
  }
  return made;
}

}  // namespace qal::io
