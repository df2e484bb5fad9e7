#ifndef QAL_IO_YAML_EVENTS_H_
#define QAL_IO_YAML_EVENTS_H_

#include <yaml.h>

#include <string_view>

namespace qal::io {

/// The events of a YAML text one after the other, from libyaml: yaml-cpp 0.7 does not return from a
/// text of three bytes, two quotes and a comma.
class YamlEvents {
 public:
  /// @throw UsageError "line N: REASON" for a NUL byte, or many %TAG directives: the parser
  ///        compares each with all before, and a trajectory has none
  explicit YamlEvents(std::string_view text);
  ~YamlEvents();
  YamlEvents(const YamlEvents&) = delete;
  YamlEvents& operator=(const YamlEvents&) = delete;

  /// The next one, valid until the one after.
  /// @throw UsageError "line N: REASON" when the text is no YAML
  const yaml_event_t& Next();

 private:
  [[noreturn]] void RefuseText() const;

  yaml_parser_t parser_;
  yaml_event_t event_ = {};
  std::string_view text_;
};

}  // namespace qal::io

#endif  // QAL_IO_YAML_EVENTS_H_
