#ifndef QAL_IO_HDF5_FILE_H_
#define QAL_IO_HDF5_FILE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qal::io {

/// Of a dataset, for whoever opens the file.
struct DatasetText {
  std::string units;        ///< "rad"; "1" for what has none
  std::string description;  ///< one sentence
};

/// An HDF5 file in memory, to be written. The same content gives the same bytes: no times are kept.
/// Whatever fails throws a `Failure`.
class Hdf5Writer {
 public:
  Hdf5Writer();
  Hdf5Writer(const Hdf5Writer&) = delete;
  Hdf5Writer& operator=(const Hdf5Writer&) = delete;
  ~Hdf5Writer();

  /// Attributes of the root.
  void Attribute(const std::string& name, const std::string& text);
  void Attribute(const std::string& name, uint64_t number);
  /// Rows of `columns` numbers; of one column a list.
  void Dataset(const std::string& name, const std::vector<double>& values, size_t columns,
               const DatasetText& text);
  void Dataset(const std::string& name, const std::vector<uint32_t>& values,
               const DatasetText& text);
  void Dataset(const std::string& name, const std::vector<int32_t>& values,
               const DatasetText& text);
  /// The file, which is then at its end.
  std::string Bytes();

 private:
  struct Held;
  std::unique_ptr<Held> held_;
};

/// An HDF5 file in memory, to be read. What isn't as asked for throws a `UsageError`.
class Hdf5Reader {
 public:
  explicit Hdf5Reader(const std::string& bytes);
  Hdf5Reader(const Hdf5Reader&) = delete;
  Hdf5Reader& operator=(const Hdf5Reader&) = delete;
  ~Hdf5Reader();

  std::string Text(const std::string& name) const;
  uint64_t Number(const std::string& name) const;
  /// A dataset of so many numbers and no others.
  std::vector<double> Doubles(const std::string& name, size_t count) const;
  std::vector<uint32_t> Unsigned(const std::string& name, size_t count) const;
  std::vector<int32_t> Signed(const std::string& name, size_t count) const;

 private:
  struct Held;
  std::unique_ptr<Held> held_;
};

}  // namespace qal::io

#endif  // QAL_IO_HDF5_FILE_H_
