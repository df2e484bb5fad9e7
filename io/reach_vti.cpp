#include "reach_vti.h"

#include <fmt/format.h>

#include "number_bytes.h"
#include "numbers.h"

namespace qal::io {

namespace {

// The arrays of an ImageData: what they are, and behind it their bytes, each with its size before
// it.
class VtiArrays {
 public:
  explicit VtiArrays(const ReachFile& file) : file_(file) {}

  // @param add adds a cell's numbers to bytes
  template <class Add>
  void Array(const std::string& name, const char* type, size_t number_size, size_t components,
             Add add) {
    described_ += fmt::format(
        "      <DataArray type=\"{}\" Name=\"{}\" NumberOfComponents=\"{}\" format=\"appended\" "
        "offset=\"{}\"/>\n",
        type, name, components, bytes_.bytes().size());
    const uint64_t size = file_.cells.size() * components * number_size;
    bytes_.Add(static_cast<uint32_t>(size));
    bytes_.Add(static_cast<uint32_t>(size >> 32));
    for (const ReachCell& cell : file_.cells) add(bytes_, cell);
  }

  const std::string& described() const { return described_; }
  const std::string& bytes() const { return bytes_.bytes(); }

 private:
  const ReachFile& file_;
  std::string described_;
  NumberBytes bytes_;
};

void AddArrays(VtiArrays& arrays, double directions) {
  const auto doubles = [&arrays](const std::string& name, auto value) {
    arrays.Array(name, "Float64", sizeof(double), 1,
                 [&](NumberBytes& bytes, const ReachCell& cell) { bytes.Add(value(cell)); });
  };
  doubles("reached_share", [=](const ReachCell& cell) { return cell.directions / directions; });
  doubles("margin", [](const ReachCell& cell) { return cell.margin_rad; });
  doubles("smallest_singular_value",
          [](const ReachCell& cell) { return cell.smallest_singular_value; });
  arrays.Array("solutions", "UInt32", sizeof(uint32_t), 1,
               [](NumberBytes& bytes, const ReachCell& cell) { bytes.Add(cell.solutions); });
  arrays.Array("joints", "Float64", sizeof(double), 6,
               [](NumberBytes& bytes, const ReachCell& cell) {
                 for (const double joint : cell.joints) bytes.Add(joint);
               });
}

}  // namespace

std::string ReachVti(const ReachFile& whole) {
  const ReachGrid grid = *GridOf(whole.study);
  const auto corner = [&](double centre) { return FormatNumber(centre - grid.step_m / 2); };
  const std::string step = FormatNumber(grid.step_m);
  const std::string extent =
      fmt::format("0 {} 0 {} 0 {}", grid.count[0], grid.count[1], grid.count[2]);
  VtiArrays arrays(whole);
  AddArrays(arrays, DirectionsOf(whole.study));
  return fmt::format(
             "<?xml version=\"1.0\"?>\n"
             "<VTKFile type=\"ImageData\" version=\"1.0\" byte_order=\"LittleEndian\" "
             "header_type=\"UInt64\">\n"
             "  <ImageData WholeExtent=\"{0}\" Origin=\"{1} {2} {3}\" Spacing=\"{4} {4} {4}\">\n"
             "    <Piece Extent=\"{0}\">\n"
             "    <CellData Scalars=\"reached_share\">\n{5}    </CellData>\n"
             "    </Piece>\n"
             "  </ImageData>\n"
             "  <AppendedData encoding=\"raw\">\n_",
             extent, corner(grid.first.x), corner(grid.first.y), corner(grid.first.z), step,
             arrays.described()) +
         arrays.bytes() + "\n  </AppendedData>\n</VTKFile>\n";
}

}  // namespace qal::io
