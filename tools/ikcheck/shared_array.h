#ifndef QAL_TOOLS_IKCHECK_SHARED_ARRAY_H_
#define QAL_TOOLS_IKCHECK_SHARED_ARRAY_H_

#include <sys/mman.h>

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace qal::ikcheck {

/// An array that a child process writes and its parent reads. All bytes start as zero.
template <typename T>
class SharedArray {
  static_assert(std::is_trivially_destructible_v<T>, "its bytes are all there is");

 public:
  /// @throw std::bad_alloc
  explicit SharedArray(size_t size) : size_(size) {
    void* memory =
        ::mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    data_ = static_cast<T*>(memory);
  }
  SharedArray(SharedArray&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  SharedArray& operator=(SharedArray&&) = delete;
  ~SharedArray() {
    if (data_ != nullptr) (void)::munmap(data_, bytes());
  }

  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }
  size_t size() const { return size_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + size_; }

 private:
  size_t bytes() const { return (size_ > 0 ? size_ : 1) * sizeof(T); }

  T* data_;
  size_t size_;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SHARED_ARRAY_H_
