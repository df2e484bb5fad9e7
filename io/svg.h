#ifndef QAL_IO_SVG_H_
#define QAL_IO_SVG_H_

#include <tinyxml2.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "plot_scale.h"

namespace qal::io {

/// Writes an SVG picture, element by element. Texts are escaped; what is no UTF-8 is replaced.
class Svg {
 public:
  using Attributes = std::initializer_list<std::pair<const char*, std::string>>;

  /// @param title for those who can't see it
  Svg(int width, int height, const std::string& title);

  void Open(const char* element, const Attributes& attributes);
  void Close() { printer_.CloseElement(); }
  void Add(const char* element, const Attributes& attributes);
  void Line(const PlotPoint& from, const PlotPoint& to, const Attributes& attributes);
  void Text(const PlotPoint& at, const std::string& text, const Attributes& attributes = {});
  /// The points of a curve with straight lines between; a part of it after each gap.
  void Curve(const std::vector<std::vector<PlotPoint>>& parts, const Attributes& attributes);

  /// A text of the usual size that fits into a width: its middle is left out where it is longer.
  static std::string Shortened(const std::string& text, double width_px);

  /// Closes what is open.
  std::string Finish();

  /// A coordinate as it is written: to a hundredth of a pixel.
  static std::string Number(double px);

 private:
  void Push(const Attributes& attributes);
  tinyxml2::XMLPrinter printer_;
};

}  // namespace qal::io

#endif  // QAL_IO_SVG_H_
