#include "yaml_events.h"

#include <fmt/format.h>

#include <new>

#include "error.h"
#include "limits.h"

namespace qal::io {

YamlEvents::YamlEvents(std::string_view text) : text_(text) {
  ExpectText(text);
  constexpr int kMostDirectives = 100;
  int directives = 0;
  for (size_t at = text.find("%TAG"); at != std::string_view::npos;
       at = text.find("%TAG", at + 1)) {
    if (++directives <= kMostDirectives) continue;
    throw UsageError(
        fmt::format("line {}: more than {} %TAG directives", LineAt(text, at), kMostDirectives));
  }
  if (yaml_parser_initialize(&parser_) == 0) throw std::bad_alloc();
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  yaml_parser_set_input_string(&parser_, bytes, text.size());
}

YamlEvents::~YamlEvents() {
  yaml_event_delete(&event_);
  yaml_parser_delete(&parser_);
}

const yaml_event_t& YamlEvents::Next() {
  yaml_event_delete(&event_);
  if (yaml_parser_parse(&parser_, &event_) == 0) RefuseText();
  return event_;
}

void YamlEvents::RefuseText() const {
  if (parser_.error == YAML_MEMORY_ERROR) throw std::bad_alloc();
  // Of bytes that are no text the parser tells the place, but not the line.
  const size_t line = parser_.error == YAML_READER_ERROR ? LineAt(text_, parser_.problem_offset)
                                                         : parser_.problem_mark.line + 1;
  throw UsageError(fmt::format("line {}: no valid YAML: {}", line, parser_.problem));
}

}  // namespace qal::io
