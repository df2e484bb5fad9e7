#include "json_text.h"

#include <fmt/format.h>

#include <iterator>

#include "error.h"
#include "limits.h"

namespace qal::io {

using nlohmann::json;

namespace {

// A place in a text that is read from its beginning to its end; the parser tells it only of errors
// of its own.
class Cursor {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  explicit Cursor(const char* at, const char** reached = nullptr) : at_(at), reached_(reached) {}

  reference operator*() const { return *at_; }
  Cursor& operator++() {
    *reached_ = at_++;
    return *this;
  }
  bool operator==(const Cursor& other) const { return at_ == other.at_; }
  bool operator!=(const Cursor& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  const char** reached_;  // the last one that has been read
};

// Counts the values of a description.
class JsonCheck : public JsonEvents {
  void OnNumber(double /*number*/) override { ExpectCount(++values_); }
  void OnOther() override { ExpectCount(++values_); }
  void OnBegin(bool /*is_list*/) override { ExpectCount(++values_); }

  size_t values_ = 0;
};

}  // namespace

void JsonEvents::OnKey(const std::string& /*key*/) {}
void JsonEvents::OnNumber(double /*number*/) {}
void JsonEvents::OnOther() {}
void JsonEvents::OnBegin(bool /*is_list*/) {}
void JsonEvents::OnEnd() {}

void JsonEvents::Read(std::string_view text) {
  ExpectText(text);
  const char* reached = text.data();
  try {
    const Cursor begin(text.data(), &reached);
    (void)json::sax_parse(begin, Cursor(text.data() + text.size()),
                          static_cast<nlohmann::json_sax<json>*>(this));
  } catch (const UsageError& error) {
    const auto place = static_cast<size_t>(reached - text.data());
    const size_t column = place - (text.substr(0, place).rfind('\n') + 1) + 1;
    throw UsageError(
        fmt::format("line {}, column {}: {}", LineAt(text, place), column, error.what()));
  }
}

bool JsonEvents::Open(bool is_list) {
  open_.emplace_back();
  ExpectDepth(depth());
  OnBegin(is_list);
  return true;
}

bool JsonEvents::Close() {
  OnEnd();
  open_.pop_back();
  return true;
}

bool JsonEvents::key(std::string& key) {
  if (!open_.back().insert(key).second) {
    throw UsageError(fmt::format("'{}' is a duplicate key", key));
  }
  ExpectCount(open_.back().size());
  OnKey(key);
  return true;
}

bool JsonEvents::parse_error(size_t /*place*/, const std::string& /*token*/,
                             const json::exception& error) {
  // 406 is the library's number of this error.
  constexpr int kNumberTooLarge = 406;
  throw UsageError(error.id == kNumberTooLarge ? "a number is too large"
                                               : "no valid JSON from here");
}

json ParseJsonText(std::string_view text) {
  // Looked through before anything is kept, so that what is kept is within the limits.
  JsonCheck().Read(text);
  return json::parse(text);
}

}  // namespace qal::io
