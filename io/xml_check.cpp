#include "xml_check.h"

#include <fmt/format.h>

#include <algorithm>

#include "error.h"
#include "limits.h"

namespace qal::io {

namespace {

class XmlCheck {
 public:
  explicit XmlCheck(std::string_view text) : text_(text) {}

  // Takes what begins at a place; the place behind it.
  size_t Step(size_t place) {
    if (text_[place] != '<') return Until("<", place);
    ExpectCount(++values_);
    // What may hold anything, and where it ends.
    constexpr std::pair<std::string_view, std::string_view> kOpaque[] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};
    for (const auto& [begin, end] : kOpaque) {
      if (text_.compare(place, begin.size(), begin) == 0) return Behind(end, place + begin.size());
    }
    if (text_.compare(place, 2, "</") == 0) {
      if (depth_ > 0) --depth_;
      return Behind(">", place);
    }
    ExpectDepth(++depth_);
    return TakeTag(place);
  }

 private:
  size_t TakeTag(size_t place) {
    constexpr size_t kMostAttributes = 100;
    size_t attributes = 0;
    for (; place < text_.size() && text_[place] != '>'; ++place) {
      const char sign = text_[place];
      if (sign == '"' || sign == '\'') place = Until(text_.substr(place, 1), place + 1);
      if (sign != '=') continue;
      ExpectCount(++values_);
      if (++attributes > kMostAttributes) {
        throw UsageError(fmt::format("an element with more than {} attributes", kMostAttributes));
      }
    }
    if (place < text_.size() && text_[place - 1] == '/' && depth_ > 0) --depth_;
    return place + 1;
  }

  size_t Until(std::string_view end, size_t from) const {
    return std::min(text_.find(end, from), text_.size());
  }
  size_t Behind(std::string_view end, size_t from) const { return Until(end, from) + end.size(); }

  std::string_view text_;
  size_t values_ = 0;
  size_t depth_ = 0;
};

}  // namespace

void CheckXml(std::string_view text) {
  XmlCheck check(text);
  LookThrough(text, [&](size_t place) { return check.Step(place); });
}

}  // namespace qal::io
