#include "hdf5_file.h"

#include <fmt/format.h>
#include <hdf5.h>

#include "error.h"

namespace qal::io {

namespace {

// Of what HDF5 hands out, to be closed.
class Handle {
 public:
  Handle(hid_t id, herr_t (*close)(hid_t)) : id_(id), close_(close) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Close(); }
  void Close() {
    if (id_ >= 0) (void)close_(id_);
    id_ = H5I_INVALID_HID;
  }
  hid_t id() const { return id_; }
  bool sound() const { return id_ >= 0; }

 private:
  hid_t id_;
  herr_t (*close_)(hid_t);
};

void ExpectWritten(bool sound, const std::string& name) {
  if (!sound) throw Failure(fmt::format("HDF5 can't make '{}'; is there enough memory?", name));
}

// In memory alone, and in steps of a size that keeps copies few.
hid_t MemoryAccess() {
  constexpr size_t kGrowth = size_t{1} << 20;
  (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // failures are told by exceptions
  const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
  (void)H5Pset_fapl_core(access, kGrowth, 0);
  return access;
}

void WriteText(hid_t owner, const std::string& name, const std::string& text) {
  const Handle type(H5Tcopy(H5T_C_S1), H5Tclose);
  (void)H5Tset_size(type.id(), text.size() + 1);
  (void)H5Tset_cset(type.id(), H5T_CSET_UTF8);
  const Handle space(H5Screate(H5S_SCALAR), H5Sclose);
  const Handle attribute(
      H5Acreate2(owner, name.c_str(), type.id(), space.id(), H5P_DEFAULT, H5P_DEFAULT), H5Aclose);
  ExpectWritten(attribute.sound() && H5Awrite(attribute.id(), type.id(), text.c_str()) >= 0, name);
}

struct Types {
  hid_t file;
  hid_t memory;
};

void WriteDataset(hid_t file, const std::string& name, const void* values, size_t count,
                  size_t columns, Types types, const DatasetText& text) {
  const hsize_t sizes[] = {count / columns, columns};
  const Handle space(H5Screate_simple(columns == 1 ? 1 : 2, sizes, nullptr), H5Sclose);
  const Handle creation(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
  (void)H5Pset_obj_track_times(creation.id(), false);
  const Handle dataset(H5Dcreate2(file, name.c_str(), types.file, space.id(), H5P_DEFAULT,
                                  creation.id(), H5P_DEFAULT),
                       H5Dclose);
  ExpectWritten(dataset.sound(), name);
  if (count > 0) {
    ExpectWritten(H5Dwrite(dataset.id(), types.memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0,
                  name);
  }
  WriteText(dataset.id(), "units", text.units);
  WriteText(dataset.id(), "description", text.description);
}

[[noreturn]] void FailToRead(const std::string& name, const std::string& expected) {
  throw UsageError(fmt::format("'{}' is not as expected: {}", name, expected));
}

template <class T>
std::vector<T> ReadDataset(hid_t file, const std::string& name, size_t count, hid_t memory) {
  const Handle dataset(H5Dopen2(file, name.c_str(), H5P_DEFAULT), H5Dclose);
  const Handle space(dataset.sound() ? H5Dget_space(dataset.id()) : H5I_INVALID_HID, H5Sclose);
  // Numbers that the file only claims to have would take memory without end.
  const bool as_many = space.sound() &&
                       H5Sget_simple_extent_npoints(space.id()) == static_cast<hssize_t>(count) &&
                       H5Dget_storage_size(dataset.id()) == count * sizeof(T);
  std::vector<T> values(as_many ? count : 0);
  if (!as_many || (count > 0 && H5Dread(dataset.id(), memory, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                                        values.data()) < 0)) {
    FailToRead(name, fmt::format("a dataset of {} numbers", count));
  }
  return values;
}

}  // namespace

struct Hdf5Writer::Held {
  Handle access{MemoryAccess(), H5Pclose};
  Handle file{H5Fcreate("memory", H5F_ACC_TRUNC, H5P_DEFAULT, access.id()), H5Fclose};
};

Hdf5Writer::Hdf5Writer() : held_(std::make_unique<Held>()) {
  ExpectWritten(held_->file.sound(), "/");
}

Hdf5Writer::~Hdf5Writer() = default;

void Hdf5Writer::Attribute(const std::string& name, const std::string& text) {
  WriteText(held_->file.id(), name, text);
}

void Hdf5Writer::Attribute(const std::string& name, uint64_t number) {
  const Handle space(H5Screate(H5S_SCALAR), H5Sclose);
  const Handle attribute(H5Acreate2(held_->file.id(), name.c_str(), H5T_STD_U64LE, space.id(),
                                    H5P_DEFAULT, H5P_DEFAULT),
                         H5Aclose);
  ExpectWritten(attribute.sound() && H5Awrite(attribute.id(), H5T_NATIVE_UINT64, &number) >= 0,
                name);
}

void Hdf5Writer::Dataset(const std::string& name, const std::vector<double>& values, size_t columns,
                         const DatasetText& text) {
  WriteDataset(held_->file.id(), name, values.data(), values.size(), columns,
               {H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE}, text);
}

void Hdf5Writer::Dataset(const std::string& name, const std::vector<uint32_t>& values,
                         const DatasetText& text) {
  WriteDataset(held_->file.id(), name, values.data(), values.size(), 1,
               {H5T_STD_U32LE, H5T_NATIVE_UINT32}, text);
}

void Hdf5Writer::Dataset(const std::string& name, const std::vector<int32_t>& values,
                         const DatasetText& text) {
  WriteDataset(held_->file.id(), name, values.data(), values.size(), 1,
               {H5T_STD_I32LE, H5T_NATIVE_INT32}, text);
}

std::string Hdf5Writer::Bytes() {
  ExpectWritten(H5Fflush(held_->file.id(), H5F_SCOPE_GLOBAL) >= 0, "/");
  const ssize_t size = H5Fget_file_image(held_->file.id(), nullptr, 0);
  ExpectWritten(size > 0, "/");
  std::string bytes(static_cast<size_t>(size), '\0');
  ExpectWritten(H5Fget_file_image(held_->file.id(), bytes.data(), bytes.size()) == size, "/");
  return bytes;
}

struct Hdf5Reader::Held {
  explicit Held(const std::string& bytes) {
    // It takes what it doesn't change without const.
    (void)H5Pset_file_image(access.id(), const_cast<char*>(bytes.data()),  // NOLINT(*-const-cast)
                            bytes.size());
    file = std::make_unique<Handle>(H5Fopen("memory", H5F_ACC_RDONLY, access.id()), H5Fclose);
  }
  Handle access{MemoryAccess(), H5Pclose};
  std::unique_ptr<Handle> file;
};

Hdf5Reader::Hdf5Reader(const std::string& bytes) : held_(std::make_unique<Held>(bytes)) {
  if (!held_->file->sound()) throw UsageError("it is no HDF5 file, or not a whole one");
}

Hdf5Reader::~Hdf5Reader() = default;

std::string Hdf5Reader::Text(const std::string& name) const {
  constexpr size_t kLongest = 1 << 16;  // what an attribute can hold
  const Handle attribute(H5Aopen(held_->file->id(), name.c_str(), H5P_DEFAULT), H5Aclose);
  const Handle type(attribute.sound() ? H5Aget_type(attribute.id()) : H5I_INVALID_HID, H5Tclose);
  const bool is_text =
      type.sound() && H5Tget_class(type.id()) == H5T_STRING && H5Tis_variable_str(type.id()) == 0;
  const size_t size = is_text ? H5Tget_size(type.id()) : 0;
  const Handle space(is_text ? H5Aget_space(attribute.id()) : H5I_INVALID_HID, H5Sclose);
  std::string text(size <= kLongest ? size : 0, '\0');
  if (text.empty() || H5Sget_simple_extent_npoints(space.id()) != 1 ||
      H5Aread(attribute.id(), type.id(), text.data()) < 0) {
    FailToRead(name, "a text");
  }
  return text.substr(0, text.find('\0'));
}

uint64_t Hdf5Reader::Number(const std::string& name) const {
  const Handle attribute(H5Aopen(held_->file->id(), name.c_str(), H5P_DEFAULT), H5Aclose);
  const Handle space(attribute.sound() ? H5Aget_space(attribute.id()) : H5I_INVALID_HID, H5Sclose);
  uint64_t number = 0;
  if (!space.sound() || H5Sget_simple_extent_npoints(space.id()) != 1 ||
      H5Aread(attribute.id(), H5T_NATIVE_UINT64, &number) < 0) {
    FailToRead(name, "a whole number");
  }
  return number;
}

std::vector<double> Hdf5Reader::Doubles(const std::string& name, size_t count) const {
  return ReadDataset<double>(held_->file->id(), name, count, H5T_NATIVE_DOUBLE);
}

std::vector<uint32_t> Hdf5Reader::Unsigned(const std::string& name, size_t count) const {
  return ReadDataset<uint32_t>(held_->file->id(), name, count, H5T_NATIVE_UINT32);
}

std::vector<int32_t> Hdf5Reader::Signed(const std::string& name, size_t count) const {
  return ReadDataset<int32_t>(held_->file->id(), name, count, H5T_NATIVE_INT32);
}

}  // namespace qal::io
