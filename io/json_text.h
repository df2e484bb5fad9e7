#ifndef QAL_IO_JSON_TEXT_H_
#define QAL_IO_JSON_TEXT_H_

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qal::io {

/// Takes a JSON text from its beginning to its end, whatever it holds. What a reader wants of it,
/// it overrides; a UsageError thrown there says what is wrong at this place.
class JsonEvents : private nlohmann::json_sax<nlohmann::json> {
 public:
  /// @throw UsageError "line N, column M: REASON" when the text isn't well-formed, is nested more
  ///        than kDeepest deep, has a key twice or more than kMostValues in an object, or is
  ///        refused by what is overridden
  void Read(std::string_view text);

 protected:
  JsonEvents() = default;
  /// How many lists and objects are open.
  size_t depth() const { return open_.size(); }

  virtual void OnKey(const std::string& key);
  virtual void OnNumber(double number);
  virtual void OnOther();              ///< a text, a flag or a null
  virtual void OnBegin(bool is_list);  ///< of a list or an object, which depth() counts already
  virtual void OnEnd();                ///< of the same, still counted

 private:
  bool Open(bool is_list);
  bool Close();

  bool null() override {
    OnOther();
    return true;
  }
  bool boolean(bool /*value*/) override {
    OnOther();
    return true;
  }
  bool number_integer(int64_t value) override {
    OnNumber(static_cast<double>(value));
    return true;
  }
  bool number_unsigned(uint64_t value) override {
    OnNumber(static_cast<double>(value));
    return true;
  }
  bool number_float(double value, const std::string& /*text*/) override {
    OnNumber(value);
    return true;
  }
  bool string(std::string& /*value*/) override {
    OnOther();
    return true;
  }
  bool binary(nlohmann::json::binary_t& /*value*/) override {
    OnOther();
    return true;
  }
  bool start_object(size_t /*entries*/) override { return Open(false); }
  bool end_object() override { return Close(); }
  bool start_array(size_t /*entries*/) override { return Open(true); }
  bool end_array() override { return Close(); }
  bool key(std::string& key) override;
  bool parse_error(size_t place, const std::string& token,
                   const nlohmann::json::exception& error) override;

  std::vector<std::set<std::string>> open_;  ///< the keys of each so far
};

/// The tree of a description's JSON text.
/// @throw UsageError as JsonEvents, and when there are more than kMostValues
nlohmann::json ParseJsonText(std::string_view text);

}  // namespace qal::io

#endif  // QAL_IO_JSON_TEXT_H_
