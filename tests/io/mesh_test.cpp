#include <gtest/gtest.h>
#include <qal/solve/kinematics.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "../../io/report_arm.h"
#include "../../io/stl.h"
#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace qal::io {
namespace {

// Six times the volume of the tetrahedra from the origin to each triangle, with its sign.
double VolumeOf(const Mesh& mesh) {
  double volume = 0;
  for (size_t i = 0; i < mesh.indices.size(); i += 3) {
    const Mesh::Vertex& a = mesh.vertices[mesh.indices[i]];
    const Mesh::Vertex& b = mesh.vertices[mesh.indices[i + 1]];
    const Mesh::Vertex& c = mesh.vertices[mesh.indices[i + 2]];
    volume += double(a[0]) * (double(b[1]) * c[2] - double(b[2]) * c[1]) +
              double(a[1]) * (double(b[2]) * c[0] - double(b[0]) * c[2]) +
              double(a[2]) * (double(b[0]) * c[1] - double(b[1]) * c[0]);
  }
  return volume / 6;
}

// A surface that is closed and seen from outside has its volume, and, if every corner is one
// vertex, V - E + F = 2 with E = 3 F / 2.
TEST(Shapes, AreClosedAndSeenFromOutside) {
  const double pi = std::acos(-1.0);
  const double of_32_sides = 16 * std::sin(pi / 16);  // the area of the polygon in a circle
  const struct {
    Mesh mesh;
    double volume, tolerance;
  } shapes[] = {{BoxMesh({0.1, 0.2, 0.3}), 0.006, 1e-8},
                {CylinderMesh(0.1, 0.3), of_32_sides * 0.01 * 0.3, 1e-8},
                {SphereMesh(0.1), 4 * pi / 3 * 1e-3, 8e-5}};
  for (const auto& [mesh, volume, tolerance] : shapes) {
    EXPECT_NEAR(VolumeOf(mesh), volume, tolerance);
    EXPECT_EQ(2 * mesh.vertices.size(), mesh.triangles() + 4);
  }
}

// The tetrahedron of the origin and the unit vectors: 1/6.
const std::vector<Vec3> kTetrahedron = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 0},
                                        {1, 0, 0}, {0, 0, 1}, {0, 0, 0}, {0, 0, 1},
                                        {0, 1, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

std::string Binary(const std::vector<Vec3>& corners, const std::string& header = "solid of CAD") {
  std::string file = header;
  file.resize(80);
  const auto add = [&file](auto value) {
    char bytes[sizeof(value)];
    std::memcpy(bytes, &value, sizeof(value));
    file.append(bytes, sizeof(value));
  };
  add(static_cast<uint32_t>(corners.size() / 3));
  for (size_t i = 0; i < corners.size(); ++i) {
    if (i % 3 == 0) file.append(12, '\0');
    for (const double c : {corners[i].x, corners[i].y, corners[i].z}) add(static_cast<float>(c));
    if (i % 3 == 2) file.append(2, '\x7f');
  }
  return file;
}

std::string Ascii(const std::vector<Vec3>& corners) {
  std::ostringstream file;
  file << "solid a vertex of it\n";
  for (size_t i = 0; i < corners.size(); ++i) {
    if (i % 3 == 0) file << "facet normal 0 0 0\n outer loop\r\n";
    file << "  vertex " << corners[i].x << ' ' << corners[i].y << " " << corners[i].z << '\n';
    if (i % 3 == 2) file << " endloop\nendfacet\n";
  }
  file << "endsolid a vertex of it\n";
  return file.str();
}

TEST(Stl, IsReadInBothForms) {
  for (const std::string& file : {Binary(kTetrahedron), Ascii(kTetrahedron)}) {
    const Mesh mesh = MeshOf(ParseStl(file, 4), {0.1, 0.1, 0.1});
    EXPECT_EQ(mesh.vertices.size(), 4U);
    EXPECT_NEAR(VolumeOf(mesh), 1e-3 / 6, 1e-9);
    EXPECT_NEAR(VolumeOf(MeshOf(ParseStl(file, 4), {-1, 1, 1})), 1.0 / 6, 1e-7);
  }
}

TEST(Stl, IsRefusedWhereItIsNone) {
  const std::string ascii = Ascii(kTetrahedron);
  const std::string binary = Binary(kTetrahedron);
  std::string nan = binary;
  nan.replace(96, 4, "\xff\xff\xff\x7f");
  const struct {
    std::string file;
    const char* reason;
  } rows[] = {
      {"", "no STL file: too short"},
      {Binary(kTetrahedron, "").substr(0, 200), "cut off, or no STL: 2 triangles are there, not 4"},
      {std::string(100, 'x'), "cut off, or no STL: 0 triangles are there, not 2021161080"},
      {ascii.substr(0, ascii.find("vertex 0 1 0") + 9), "line 5: '' is not a number"},
      {ascii.substr(0, ascii.find("endsolid")), "cut off: no endsolid"},
      {"solid x\nfacet normal 0 0 0 outer loop vertex 0 0 0 endloop",
       "line 2: a facet that is no triangle"},
      {"solid x\nendsolid x\n", "no triangle in it"},
      {nan, "triangle 0: a coordinate is no number"},
      {Binary({{1e7, 0, 0}, {0, 1, 0}, {0, 0, 1}}),
       "a coordinate of 1e+07; up to 1e+06 are expected"},
      {Binary(std::vector<Vec3>(15)), "5 triangles or more; up to 4 are drawn"},
      {Ascii(std::vector<Vec3>(15)), "5 triangles or more; up to 4 are drawn"},
  };
  for (const auto& [file, reason] : rows) {
    EXPECT_EQ(reason, Refusal([&, &file = file] { (void)MeshOf(ParseStl(file, 4)); }));
  }
}

using Bodies = InOwnFolder;

// The reference arm, with `looks` of a link.
std::string Urdf(const std::string& link, const std::string& looks) {
  std::string text = FileContent(QAL_ARMS_DIR "/reference.urdf");
  const std::string tag = "<link name=\"" + link + "\"/>";
  text.replace(text.find(tag), tag.size(), "<link name=\"" + link + "\">" + looks + "</link>");
  return text;
}

nlohmann::ordered_json BodiesOf(const std::string& urdf) {
  std::filesystem::create_directories("robots/cell/urdf");
  std::ofstream("robots/cell/urdf/arm.urdf") << urdf;
  return ReportArmJson(ReadArm("robots/cell/urdf/arm.urdf"));
}

TEST_F(Bodies, AreFoundWhereverTheirPathLeads) {
  std::filesystem::create_directories("robots/cell/meshes");
  std::ofstream("robots/cell/meshes/part.STL") << Binary(kTetrahedron);
  for (const char* name : {"package://cell/meshes/part.STL", "package://other/meshes/part.STL",
                           "meshes/part.STL", "../meshes/part.STL"}) {
    const std::string looks =
        std::string("<visual><origin xyz='0 0 0.5'/><geometry><mesh filename='") + name +
        "' scale='.1 .1 .1'/></geometry><material name='red'/></visual>";
    std::string urdf = Urdf("link_3", looks);
    urdf.insert(urdf.find("<link"), "<material name='red'><color rgba='1 0 0 1'/></material>");
    const auto json = BodiesOf(urdf);
    ASSERT_EQ(json["bodies"].size(), 1U) << json["notes"].dump();
    const auto& body = json["bodies"][0];
    EXPECT_EQ(body["link"], 3);
    EXPECT_EQ(body["color"], nlohmann::ordered_json({1.0, 0.0, 0.0}));
    EXPECT_EQ(body["indices"].get<std::string>().size(), 64U);  // 4 x 3 x 4 bytes
    EXPECT_TRUE(json["notes"].empty());
  }
}

// A visual at the tool's own link stands where the tool does.
TEST_F(Bodies, StandAtTheirLinkWithAllJointsAtZero) {
  const std::string box = "<visual><geometry><box size='.1 .1 .1'/></geometry></visual>";
  const auto json =
      BodiesOf(Urdf("tool0", box + "<visual><geometry><sphere radius='.1'/></geometry></visual>"));
  ASSERT_EQ(json["bodies"].size(), 2U) << json.dump();
  const auto& placement = json["bodies"][0]["placement"];
  const Pose tool = Forward(Arm::Reference(), {}).value();
  EXPECT_EQ(json["bodies"][0]["link"], 6);
  EXPECT_NEAR(placement[3], tool.position.x, 1e-12);
  EXPECT_NEAR(placement[7], tool.position.y, 1e-12);
  EXPECT_NEAR(placement[11], tool.position.z, 1e-12);
  const auto& [w, x, y, z] = tool.orientation;
  EXPECT_NEAR(placement[1], 2 * (x * y - w * z), 1e-12);
  EXPECT_NEAR(placement[10], w * w - x * x - y * y + z * z, 1e-12);
}

TEST_F(Bodies, AreMissingWithANoteAndNeverAFailure) {
  std::ofstream("broken.stl") << "none";
  const struct {
    const char* geometry;
    const char* note;
  } rows[] = {
      {"<mesh filename='gone.stl'/>",
       "link 'link_3' is not drawn: gone.stl: no such file there or in a folder above"},
      {"<mesh filename='broken.stl'/>",
       "link 'link_3' is not drawn: broken.stl: no STL file: too short"},
      {"<mesh filename='/dev/zero'/>",
       "link 'link_3' is not drawn: /dev/zero: only meshes in STL files are drawn"},
      {"<mesh filename='a.dae'/>",
       "link 'link_3' is not drawn: a.dae: only meshes in STL files are drawn"},
      {"<box size='1 2'/>",
       "robots/cell/urdf/arm.urdf, line 7: size has 2 numbers; 3 are expected"},
      {"<sphere radius='1e9'/>",
       "link 'link_3' is not drawn: a coordinate of -1e+09; up to 1e+06 are expected"},
      {"",
       "robots/cell/urdf/arm.urdf, line 7: a box, cylinder, sphere or mesh is expected in "
       "<geometry>"},
  };
  for (const auto& [geometry, note] : rows) {
    const auto json = BodiesOf(
        Urdf("link_3", std::string("<visual><geometry>") + geometry + "</geometry></visual>"));
    EXPECT_TRUE(json["bodies"].empty());
    EXPECT_EQ(json["notes"], nlohmann::ordered_json({note}));
  }
  const auto far = BodiesOf(Urdf("link_3",
                                 "<visual><geometry><box size='1 1 1'/></geometry>"
                                 "<origin xyz='1e200 0 1e200'/></visual>"));
  EXPECT_EQ(far["notes"][0],
            "robots/cell/urdf/arm.urdf, line 7: farther than 1e+06 m from the base");
}

// The solver of the arm goes on as the solver says.
TEST_F(Bodies, AreNotThoseOfAnotherArm) {
  std::ofstream("arm.toml") << "description = '" QAL_ARMS_DIR
                               "/bench_spherical.urdf'\nsolver = '" QAL_REFERENCE_SOLVER "'\n";
  const auto json = ReportArmJson(ReadArm("arm.toml"));
  EXPECT_EQ(json["notes"][0], QAL_ARMS_DIR
            "/bench_spherical.urdf: the axes are not those of the solver, and so what the links "
            "look like is not drawn");
}

}  // namespace
}  // namespace qal::io
