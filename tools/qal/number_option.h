#ifndef QAL_TOOLS_QAL_NUMBER_OPTION_H_
#define QAL_TOOLS_QAL_NUMBER_OPTION_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace qal::tools {

/// An option that takes numbers, with blanks or commas between: `--joints 0 0.3 -0.2 0 0.5 0`.
class NumberOption {
 public:
  /// @param shape what the help shows for the numbers, such as "X Y Z"
  void AddTo(CLI::App& command, const std::string& name, const std::string& shape,
             const std::string& help);

  bool given() const { return !texts_.empty(); }
  const std::string& name() const { return name_; }
  /// How many there are.
  size_t size() const { return Split().size(); }
  /// "NAME, value N", as messages call a number; "NAME" where there is but one.
  std::string Where(size_t number) const;
  /// @param expected what a wrong number of them is answered with, such as "6 numbers [rad]"
  /// @throw UsageError when there are not exactly `count`, or one is no finite number
  std::vector<double> Read(size_t count, const std::string& expected) const;
  /// A single number from `least` to `most`.
  double ReadWithin(double least, double most) const;
  /// A single whole number from `least` to `most`.
  int ReadWhole(int least, int most) const;

 private:
  std::vector<std::string> Split() const;
  std::vector<std::string> SplitExactly(size_t count, const std::string& expected) const;

  std::string name_;
  std::vector<std::string> texts_;
};

/// The words in texts, with blanks or commas between.
std::vector<std::string> SplitWords(const std::vector<std::string>& texts);

/// Makes one argument of the values that follow --joint-names or a --max-... limit, six at the
/// most, so that a file name may follow them.
std::vector<std::string> GatherLists(const std::vector<std::string>& arguments);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_NUMBER_OPTION_H_
