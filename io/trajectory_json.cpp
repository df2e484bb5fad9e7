#include "trajectory_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "error.h"
#include "json_text.h"

namespace qal::io {

namespace {

constexpr auto kTimes = "time_s";
constexpr auto kJointsKey = "joints_rad";
constexpr auto kPositions = "position_m";
constexpr auto kOrientations = "orientation_wxyz";
constexpr auto kVelocitiesKey = "velocities_rad_s";
constexpr auto kAccelerationsKey = "accelerations_rad_s2";

// The array of one of the keys: an entry a sample, each a number or a row of numbers.
struct Quantity {
  const char* key;
  size_t width;  // of a row; 0: a number
  bool found = false;
  size_t entries = 0;
  std::vector<double> values = {};
};

// Keeps the numbers of the quantities and passes over all else.
class QuantityReader : public JsonEvents {
 public:
  // Those of the parts, in the order of SampleOf's values.
  std::vector<const Quantity*> Of(const SampleParts& parts) const;
  SampleParts parts() const {
    const auto& [times, joints, positions, orientations, velocities, accelerations] = quantities_;
    return {positions.found || orientations.found, velocities.found, accelerations.found};
  }

 private:
  // depth() in an array of a quantity, and in a row of it.
  static constexpr size_t kInArray = 2;
  static constexpr size_t kInRow = 3;

  void OnKey(const std::string& key) override {
    if (depth() + 1 != kInArray) return;
    const auto found = std::find_if(quantities_.begin(), quantities_.end(),
                                    [&key](const Quantity& q) { return q.key == key; });
    current_ = found == quantities_.end() ? nullptr : &*found;
    if (current_ != nullptr) current_->found = true;
  }

  void OnBegin(bool is_list) override {
    if (current_ == nullptr) return;
    in_row_ = 0;
    if (depth() == kInArray) {
      if (!is_list) current_ = nullptr;
      return;
    }
    if (depth() > kInRow || (depth() == kInRow && current_->width == 0)) Refuse();
    if (depth() == kInRow && !is_list) RefuseRow();
  }

  void OnEnd() override {
    if (current_ == nullptr) return;
    if (depth() == kInArray) current_ = nullptr;
    if (depth() != kInRow) return;
    if (in_row_ != current_->width) RefuseRow();
    ++current_->entries;
  }

  void OnNumber(double number) override {
    if (current_ == nullptr || depth() < kInArray) return;
    if (depth() == kInArray && current_->width > 0) RefuseRow();
    if (depth() == kInRow && ++in_row_ > current_->width) RefuseRow();
    if (depth() == kInArray) ++current_->entries;
    current_->values.push_back(number);
  }

  void OnOther() override {
    if (current_ != nullptr && depth() >= kInArray) Refuse();
  }

  // Something else than what is expected here.
  [[noreturn]] void Refuse() const {
    if (depth() <= kInArray && current_->width > 0) RefuseRow();
    throw UsageError(
        fmt::format("{}[{}]: a number was expected", current_->key, current_->entries));
  }

  [[noreturn]] void RefuseRow() const {
    throw UsageError(fmt::format("{}[{}]: {} numbers were expected", current_->key,
                                 current_->entries, current_->width));
  }

  std::array<Quantity, 6> quantities_ = {{{kTimes, 0},
                                          {kJointsKey, 6},
                                          {kPositions, 3},
                                          {kOrientations, 4},
                                          {kVelocitiesKey, 6},
                                          {kAccelerationsKey, 6}}};
  Quantity* current_ = nullptr;  // whose array is being read
  size_t in_row_ = 0;
};

std::vector<const Quantity*> QuantityReader::Of(const SampleParts& parts) const {
  const auto& [times, joints, positions, orientations, velocities, accelerations] = quantities_;
  std::vector<const Quantity*> quantities = {&times, &joints};
  if (parts.pose) quantities.insert(quantities.end(), {&positions, &orientations});
  if (parts.velocities) quantities.push_back(&velocities);
  if (parts.accelerations) quantities.push_back(&accelerations);
  return quantities;
}

void ExpectEntries(const Quantity& quantity, size_t count) {
  if (quantity.entries == 0) {
    throw UsageError(fmt::format("no array '{}' with an entry for each sample", quantity.key));
  }
  if (quantity.entries == count) return;
  throw UsageError(fmt::format("{}: {} entries, {} were expected, as in {}", quantity.key,
                               quantity.entries, count, kTimes));
}

// Adds the numbers of a sample.
void AppendRow(const Quantity& quantity, size_t sample, std::vector<double>& values) {
  const size_t width = std::max<size_t>(quantity.width, 1);
  const double* const row = &quantity.values[sample * width];
  values.insert(values.end(), row, row + width);
}

}  // namespace

Json ToJson(const FileTrajectory& trajectory) {
  Json document;
  const auto add = [&](const char* key, const auto& entry_of) {
    auto& entries = document[key] = Json::array();
    for (const FileSample& sample : trajectory) entries.push_back(entry_of(sample));
  };
  const SampleParts parts = PartsOf(trajectory);
  add(kTimes, [](const FileSample& sample) { return sample.time_s; });
  add(kJointsKey, [](const FileSample& sample) { return sample.joints; });
  if (parts.pose) {
    add(kPositions, [](const FileSample& sample) {
      const auto& [x, y, z] = sample.pose->position;
      return std::array<double, 3>{x, y, z};
    });
    add(kOrientations, [](const FileSample& sample) {
      const auto& [w, x, y, z] = sample.pose->orientation;
      return std::array<double, 4>{w, x, y, z};
    });
  }
  if (parts.velocities) {
    add(kVelocitiesKey, [](const FileSample& sample) { return *sample.velocities; });
  }
  if (parts.accelerations) {
    add(kAccelerationsKey, [](const FileSample& sample) { return *sample.accelerations; });
  }
  return document;
}

LocatedTrajectory ParseJsonTrajectory(std::string_view text) {
  QuantityReader reader;
  reader.Read(text);
  const SampleParts parts = reader.parts();
  const std::vector<const Quantity*> quantities = reader.Of(parts);
  const size_t count = quantities.front()->entries;
  for (const Quantity* quantity : quantities) ExpectEntries(*quantity, count);
  LocatedTrajectory read;
  read.samples.reserve(count);
  std::vector<double> values;
  for (size_t i = 0; i < count; ++i) {
    values.clear();
    for (const Quantity* quantity : quantities) AppendRow(*quantity, i, values);
    try {
      read.samples.push_back(SampleOf(values.data(), parts));
    } catch (const UsageError& error) {
      throw UsageError(fmt::format("{}[{}]: {}", kOrientations, i, error.what()));
    }
  }
  return read;
}

}  // namespace qal::io
