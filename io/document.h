#ifndef QAL_IO_DOCUMENT_H_
#define QAL_IO_DOCUMENT_H_

#include <qal/model/pose.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qal::io {

/// What a file of an arm is, told from what it begins with, whatever its name.
enum class Content { kLibrary, kXml, kJson, kToml };

Content ContentOf(std::string_view text);

/// A TOML or JSON text as a tree of values.
struct Document {
  Document(std::string path_in, nlohmann::json root_in)
      : path(std::move(path_in)), root(std::move(root_in)) {}
  Document(const Document&) = delete;  // the lines are those of this tree's values
  Document& operator=(const Document&) = delete;
  Document(Document&&) = default;
  Document& operator=(Document&&) = delete;
  ~Document() = default;

  std::string path;  ///< what messages call the text
  nlohmann::json root;
  /// Where each value below the root stands. JSON gives no lines.
  std::unordered_map<const nlohmann::json*, unsigned> lines;

  /// "PATH, line N", or "PATH" where there is no line.
  std::string Place(const nlohmann::json& value) const;
};

/// @throw UsageError "PATH, line N: ..." when the text isn't well-formed, has a key twice, or goes
///        beyond the limits of limits.h; of a text that isn't TOML, by neither content nor name, it
///        says what is `expected`
Document ParseToml(const std::string& text, const std::string& path,
                   const std::string& expected = "a URDF, TOML, JSON or a solver library");
Document ParseJson(const std::string& text, const std::string& path);

/// What a number of a key is to be multiplied with for radians: `_deg` in its name says degrees.
double AngleUnit(const std::string& key);

/// An object of a document, read by its keys. What isn't as expected is refused: a UsageError with
/// file, line where there is one, key, and what was expected.
class Fields {
 public:
  /// @param document has to outlive this
  /// @param value    what should be an object, in the document; its root without
  /// @param label    what messages call the object; empty: the file's name is enough
  explicit Fields(const Document& document) : Fields(document, document.root, "") {}
  Fields(const Document& document, const nlohmann::json& value, const std::string& label);

  /// Refuses keys that are not among these.
  void Expect(const std::vector<std::string>& keys) const;
  std::vector<std::string> Keys() const;
  bool Has(const std::string& key) const { return object_->contains(key); }
  const nlohmann::json& at(const std::string& key) const { return object_->at(key); }

  std::string Text(const std::string& key, const std::string& otherwise) const;
  /// @param otherwise what an absent key stands for; none: it has to be there
  double Number(const std::string& key, std::optional<double> otherwise) const;
  /// A list of `count` numbers.
  std::vector<double> Numbers(const std::string& key, size_t count) const;
  /// A list of three numbers; zeros without the key.
  Vec3 Triple(const std::string& key) const;
  /// A list of lists of three numbers.
  std::vector<Vec3> Triples(const std::string& key) const;
  /// Of a key in radians and the same in degrees, `_deg` for `_rad`, the one that is there; empty
  /// without either.
  std::string AngleKey(const std::string& radians) const;
  /// The object at a key.
  Fields Object(const std::string& key) const;
  /// An object in the list at a key; messages count it from 1.
  Fields Entry(const std::string& key, size_t entry) const;
  /// The same, called otherwise.
  Fields Entry(const std::string& key, size_t entry, const std::string& label) const;
  /// How many objects there are in the list at a key.
  size_t Entries(const std::string& key) const;

  const std::string& label() const { return label_; }
  /// The line that the object stands in, counted from 1; 0 where there is none.
  unsigned line() const;
  /// "PATH, line N, LABEL, KEY", or without the key when it is empty.
  std::string Where(const std::string& key) const;
  [[noreturn]] void Refuse(const std::string& key, const std::string& reason) const;

 private:
  double Finite(const nlohmann::json& value, const std::string& key) const;
  std::vector<double> Numbers(const nlohmann::json& list, const std::string& key,
                              size_t count) const;

  const Document* document_;
  const nlohmann::json* object_;
  std::string label_;
};

}  // namespace qal::io

#endif  // QAL_IO_DOCUMENT_H_
