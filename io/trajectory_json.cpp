#include "trajectory_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "error.h"
#include "json_text.h"

namespace qal::io {

namespace {

constexpr auto kTimes = "time_s";
constexpr auto kJoints = "joints_rad";
constexpr auto kPositions = "position_m";
constexpr auto kOrientations = "orientation_wxyz";

// The array of one of the keys: an entry a sample, each a number or a row of numbers.
struct Quantity {
  const char* key;
  size_t width;  // of a row; 0: a number
  bool found = false;
  size_t entries = 0;
  std::vector<double> values = {};
};

// Keeps the numbers of the four quantities and passes over all else.
class QuantityReader : public JsonEvents {
 public:
  const Quantity& times() const { return quantities_[0]; }
  const Quantity& joints() const { return quantities_[1]; }
  const Quantity& positions() const { return quantities_[2]; }
  const Quantity& orientations() const { return quantities_[3]; }

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

  std::array<Quantity, 4> quantities_ = {
      {{kTimes, 0}, {kJoints, 6}, {kPositions, 3}, {kOrientations, 4}}};
  Quantity* current_ = nullptr;  // whose array is being read
  size_t in_row_ = 0;
};

void ExpectEntries(const Quantity& quantity, size_t count) {
  if (quantity.entries == 0) {
    throw UsageError(fmt::format("no array '{}' with an entry for each sample", quantity.key));
  }
  if (quantity.entries == count) return;
  throw UsageError(fmt::format("{}: {} entries, {} were expected, as in {}", quantity.key,
                               quantity.entries, count, kTimes));
}

// The numbers of a row, to where they go in a sample's; behind them.
double* CopyRow(const Quantity& quantity, size_t sample, double* values) {
  const size_t width = std::max<size_t>(quantity.width, 1);
  return std::copy_n(&quantity.values[sample * width], width, values);
}

}  // namespace

nlohmann::ordered_json ToJson(const FileTrajectory& trajectory) {
  using Json = nlohmann::ordered_json;
  Json times = Json::array();
  Json joints = Json::array();
  Json positions = Json::array();
  Json orientations = Json::array();
  const bool poses = HavePoses(trajectory);
  for (const FileSample& sample : trajectory) {
    times.push_back(sample.time_s);
    joints.push_back(sample.joints);
    if (!poses) continue;
    const auto& [position, orientation] = *sample.pose;
    positions.push_back({position.x, position.y, position.z});
    orientations.push_back({orientation.w, orientation.x, orientation.y, orientation.z});
  }
  Json json = {{kTimes, std::move(times)}, {kJoints, std::move(joints)}};
  if (poses) {
    json[kPositions] = std::move(positions);
    json[kOrientations] = std::move(orientations);
  }
  return json;
}

LocatedTrajectory ParseJsonTrajectory(std::string_view text) {
  QuantityReader reader;
  reader.Read(text);
  const size_t count = reader.times().entries;
  ExpectEntries(reader.times(), count);
  ExpectEntries(reader.joints(), count);
  const bool pose = reader.positions().found || reader.orientations().found;
  if (pose) {
    ExpectEntries(reader.positions(), count);
    ExpectEntries(reader.orientations(), count);
  }
  LocatedTrajectory read;
  read.samples.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    std::array<double, 14> values{};
    double* next = CopyRow(reader.joints(), i, CopyRow(reader.times(), i, values.data()));
    if (pose) CopyRow(reader.orientations(), i, CopyRow(reader.positions(), i, next));
    try {
      read.samples.push_back(SampleOf(values.data(), pose));
    } catch (const UsageError& error) {
      throw UsageError(fmt::format("{}[{}]: {}", kOrientations, i, error.what()));
    }
  }
  return read;
}

}  // namespace qal::io
