#include "arm_file.h"

#include <fmt/format.h>

#include <filesystem>

#include "arm_settings.h"
#include "document.h"
#include "error.h"
#include "files.h"
#include "limits.h"
#include "table.h"
#include "units.h"

namespace qal::io {

namespace {

// A path that a file names: from the file's own folder.
std::string InFolderOf(const std::string& file, const std::string& named) {
  if (file == "-") return named;
  return (std::filesystem::path(file).parent_path() / named).lexically_normal().string();
}

// The description in a text of its own; a URDF is kept.
ArmDescription DescriptionIn(std::string text, const std::string& path, const ReadOptions& options,
                             ArmFile& file) {
  ArmDescription arm = ParseDescription(text, path, options);
  if (ContentOf(text) == Content::kXml) {
    file.urdf = std::make_shared<const UrdfSource>(UrdfSource{std::move(text), path, options});
  }
  return arm;
}

// The description that an arm file names or has within.
ArmDescription DescriptionOf(const Fields& fields, const std::string& path,
                             const ReadOptions& options, const ReadText& read, ArmFile& file) {
  if (fields.at("description").is_string()) {
    const std::string named = InFolderOf(path, fields.Text("description", ""));
    ReadOptions with_links = options;
    if (options.base.empty()) with_links.base = fields.Text("base_link", "");
    if (options.tip.empty()) with_links.tip = fields.Text("tip_link", "");
    try {
      return DescriptionIn(read(named), named, with_links, file);
    } catch (const UsageError& error) {
      fields.Refuse("description", error.what());
    }
  }
  for (const char* key : {"base_link", "tip_link"}) {
    if (fields.Has(key)) fields.Refuse(key, "for a URDF; a table has no links");
  }
  ExpectTableOptions(options);
  const ArmDescription arm = ReadTable(fields.Object("description"), options);
  CheckScale(arm, path, options);
  return arm;
}

ArmFile FromDocument(const Document& document, const std::string& path, const ReadOptions& options,
                     const ReadText& read) {
  const Fields fields(document);
  ArmFile file = {document.path, "arm file", std::nullopt, {}, ""};
  if (fields.Has("convention")) {
    ExpectTableOptions(options);
    file.kind = "table";
    file.description = ReadTable(fields, options);
    CheckScale(*file.description, document.path, options);
    return file;
  }
  fields.Expect({"name", "description", "solver", "base_link", "tip_link", "cycle_s", "limits",
                 "motors", "base", "tool"});
  if (!fields.Has("description") && !fields.Has("solver")) {
    fields.Refuse("",
                  "no description; a table has its convention, an arm file has 'description', a "
                  "path or a table, or 'solver', a path");
  }
  file.settings = ReadArmSettings(fields);
  if (fields.Has("description"))
    file.description = DescriptionOf(fields, path, options, read, file);
  if (fields.Has("description") && fields.at("description").is_string()) {
    file.sources.push_back(InFolderOf(path, fields.Text("description", "")));
  }
  if (fields.Has("solver")) file.solver = InFolderOf(path, fields.Text("solver", ""));
  return file;
}

ArmFile ReadAnyFile(const std::string& path, const ReadOptions& options, const ReadText& read) {
  const std::string name = NameOf(path);
  const std::string text = read(path);
  switch (ContentOf(text)) {
    case Content::kLibrary:
      if (path == "-") throw UsageError(name + ": a library; its path is expected");
      return {name, "solver library", std::nullopt, {}, path};
    case Content::kXml: {
      ArmFile file = {name, "URDF", std::nullopt, {}, ""};
      file.description = DescriptionIn(text, name, options, file);
      return file;
    }
    case Content::kJson:
      return FromDocument(ParseJson(text, name), path, options, read);
    case Content::kToml:
      break;
  }
  return FromDocument(ParseToml(text, name), path, options, read);
}

}  // namespace

std::string ReadDescriptionText(const std::string& path) {
  return ReadFile(path, kLargestDescription);
}

ArmFile ReadArmFile(const std::string& path, const ReadOptions& options, const ReadText& read) {
  ArmFile file = ReadAnyFile(path, options, read);
  file.sources.push_back(path);
  return file;
}

ArmDescription DescriptionIn(const ArmFile& file) {
  if (!file.description) {
    throw UsageError(fmt::format("{}: {} without a description; a URDF or a table is expected",
                                 file.name,
                                 file.kind == "arm file" ? "an arm file" : "a solver library"));
  }
  ArmDescription description = *file.description;
  for (size_t j = 0; j < file.settings.joints.size(); ++j) {
    const JointSettings& said = file.settings.joints[j];
    JointDescription& joint = description.joints[j];
    if (said.lower_rad) joint.lower_rad = said.lower_rad;
    if (said.upper_rad) joint.upper_rad = said.upper_rad;
    if (said.velocity_rad_s) joint.velocity_rad_s = said.velocity_rad_s;
  }
  if (!file.settings.name.empty()) description.name = file.settings.name;
  return description;
}

ArmDescription ReadDescription(const std::string& path, const ReadOptions& options) {
  return DescriptionIn(ReadArmFile(path, options));
}

}  // namespace qal::io
