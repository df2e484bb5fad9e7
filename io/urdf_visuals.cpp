#include "urdf_visuals.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "error.h"
#include "mesh.h"
#include "urdf_document.h"

namespace qal::io {

namespace {

using tinyxml2::XMLElement;

using Color = std::array<double, 3>;

std::optional<Color> ColorIn(const UrdfDocument& urdf, const XMLElement& material) {
  const XMLElement* color = material.FirstChildElement("color");
  if (color == nullptr) return std::nullopt;
  const std::vector<double> rgba = urdf.Numbers(*color, "rgba", 4);
  Color rgb;
  std::transform(rgba.begin(), rgba.begin() + 3, rgb.begin(),
                 [](double part) { return std::clamp(part, 0.0, 1.0); });
  return rgb;
}

// Reads the visuals of links.
class VisualReader {
 public:
  explicit VisualReader(const UrdfDocument& urdf) : urdf_(urdf) {
    for (const auto* e = urdf.robot().FirstChildElement("material"); e;
         e = e->NextSiblingElement("material")) {
      Try([&] { (void)ColorOf(*e); });
    }
  }

  void Add(const XMLElement& link, int index, const Transform& frame) {
    for (const auto* e = link.FirstChildElement("visual"); e; e = e->NextSiblingElement("visual")) {
      Try([&] {
        const XMLElement* material = e->FirstChildElement("material");
        read_.visuals.push_back({Attribute(urdf_.path(), link, "name"), index,
                                 PlacementOf(*e, frame), ShapeOf(*e),
                                 material != nullptr ? ColorOf(*material) : std::nullopt});
      });
    }
  }

  UrdfVisuals Read() { return std::move(read_); }

 private:
  template <typename Work>
  void Try(Work work) {
    try {
      work();
    } catch (const UsageError& error) {
      read_.notes.emplace_back(error.what());
    }
  }

  // That of the material, or of one with the same name before.
  std::optional<Color> ColorOf(const XMLElement& material) {
    const char* const name = material.Attribute("name");
    const std::string key = name != nullptr ? name : "";
    if (const auto color = ColorIn(urdf_, material)) {
      if (!key.empty()) named_[key] = *color;
      return color;
    }
    const auto found = named_.find(key);
    return found != named_.end() ? std::optional<Color>(found->second) : std::nullopt;
  }

  Transform PlacementOf(const XMLElement& visual, const Transform& frame) const {
    Transform placement = frame * urdf_.Origin(visual);
    const auto& [x, y, z] = placement.position;
    if (std::hypot(x, y, z) <= kLargestCoordinate) return placement;
    throw UsageError(fmt::format("{}: farther than {:g} m from the base",
                                 Place(urdf_.path(), visual), kLargestCoordinate));
  }

  double Length(const XMLElement& element, const char* name) const {
    return urdf_.units().Metres(urdf_.Numbers(element, name, 1)[0]);
  }

  decltype(UrdfVisual::shape) ShapeOf(const XMLElement& visual) const {
    const XMLElement* geometry = OnlyChild(urdf_.path(), visual, "geometry");
    const XMLElement* shape = geometry != nullptr ? geometry->FirstChildElement() : nullptr;
    const std::string kind = shape != nullptr ? shape->Name() : "";
    if (kind == "box") return BoxShape{urdf_.units().Metres(urdf_.Triple(*shape, "size"))};
    if (kind == "cylinder")
      return CylinderShape{Length(*shape, "radius"), Length(*shape, "length")};
    if (kind == "sphere") return SphereShape{Length(*shape, "radius")};
    if (kind == "mesh") {
      const bool scaled = shape->Attribute("scale") != nullptr;
      const Vec3 scale = scaled ? urdf_.Triple(*shape, "scale") : Vec3{1, 1, 1};
      return MeshFile{Attribute(urdf_.path(), *shape, "filename"), urdf_.units().Metres(scale)};
    }
    throw UsageError(fmt::format("{}: a box, cylinder, sphere or mesh is expected in <geometry>",
                                 Place(urdf_.path(), visual)));
  }

  const UrdfDocument& urdf_;
  std::map<std::string, Color> named_;
  UrdfVisuals read_;
};

}  // namespace

UrdfVisuals ReadVisuals(const UrdfSource& source) {
  const UrdfDocument urdf(source.text, source.path, source.options);
  std::map<std::string, const XMLElement*> elements;
  for (const auto* e = urdf.robot().FirstChildElement("link"); e;
       e = e->NextSiblingElement("link")) {
    elements[Attribute(source.path, *e, "name")] = e;
  }
  struct Placed {
    int index;
    Transform frame;
  };
  std::map<std::string, Placed> placed;
  VisualReader reader(urdf);
  for (const auto& [name, joint] : urdf.tree().LinksFrom(urdf.base())) {
    Placed place = {0, {}};
    if (joint != nullptr) {
      const Placed& parent = placed.at(joint->parent);
      const UrdfChain& chain = urdf.chain();
      const bool turns =
          !joint->Fixed() && std::find(chain.begin(), chain.end(), joint) != chain.end();
      place = {parent.index + (turns ? 1 : 0), parent.frame * urdf.Origin(*joint->element)};
    }
    placed[name] = place;
    reader.Add(*elements.at(name), place.index, place.frame);
  }
  return reader.Read();
}

}  // namespace qal::io
