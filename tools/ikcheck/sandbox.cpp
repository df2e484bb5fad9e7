#include "sandbox.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <system_error>

#include "shared_array.h"

namespace qal::ikcheck {

namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { Close(); }
  void Close() {
    if (number_ >= 0) (void)::close(number_);
    number_ = -1;
  }
  int number() const { return number_; }

 private:
  int number_;
};

// A file in memory in place of standard output and standard error. Its first bytes are mapped, so
// that a look for output costs no system call after each of many short steps.
class Capture {
 public:
  static constexpr size_t kBytes = 4096;

  Capture() : file_(::memfd_create("ikcheck-output", MFD_CLOEXEC)) {
    if (file_.number() < 0) Fail("capture of output");
    Clear();
    void* memory = ::mmap(nullptr, kBytes, PROT_READ, MAP_SHARED, file_.number(), 0);
    if (memory == MAP_FAILED) Fail("capture of output");
    text_ = static_cast<const volatile char*>(memory);
  }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;
  ~Capture() { (void)::munmap(const_cast<char*>(text_), kBytes); }

  // In the child. Unbuffered, so that what is written is there at once.
  void Redirect() const {
    (void)::dup2(file_.number(), STDOUT_FILENO);
    (void)::dup2(file_.number(), STDERR_FILENO);
    (void)std::setvbuf(stdout, nullptr, _IONBF, 0);
  }
  void Clear() const {
    const int file = file_.number();
    if (::ftruncate(file, 0) != 0 || ::ftruncate(file, kBytes) != 0 ||
        ::lseek(file, 0, SEEK_SET) != 0) {
      Fail("capture of output");
    }
  }
  bool any() const { return text_[0] != '\0'; }
  std::string text() const {
    std::string text;
    for (size_t i = 0; i < kBytes && text_[i] != '\0'; ++i) text += text_[i];
    return text;
  }

 private:
  Descriptor file_;
  const volatile char* text_;
};

// Where the children of one run are.
struct Progress {
  std::atomic<size_t> next;           // step being run; the number of steps when all are done
  std::atomic<size_t> first_printed;  // kNone: nothing so far
  static_assert(std::atomic<size_t>::is_always_lock_free, "shared between processes");
};

// noexcept: what a step throws must not reach the parent's code above, which runs here, too.
[[noreturn]] void RunChild(size_t count, const std::function<void(size_t)>& step,
                           const Capture& capture, Progress& progress) noexcept {
  (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  const rlimit no_core = {0, 0};
  (void)::setrlimit(RLIMIT_CORE, &no_core);
  // A signal has to end the child as a signal, whatever handlers a sanitizer has installed.
  for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
    (void)std::signal(number, SIG_DFL);
  }
  capture.Redirect();
  for (size_t i = progress.next; i < count; ++i) {
    progress.next = i;
    step(i);
    if (progress.first_printed == kNone && capture.any()) progress.first_printed = i;
  }
  progress.next = count;
  ::_exit(0);
}

// Waits until the child has gone, which closes its end of the pipe, and returns its status; nothing
// when it had to be stopped because no step was finished within the time.
std::optional<int> Wait(pid_t child, int pipe, const std::atomic<size_t>& next, double timeout_s) {
  using Clock = std::chrono::steady_clock;
  const auto timeout = std::chrono::duration<double>(timeout_s);
  size_t last = next;
  auto since = Clock::now();
  bool stopped = false;
  for (;;) {
    pollfd events = {pipe, POLLIN, 0};
    const int ready = ::poll(&events, 1, static_cast<int>(timeout_s * 250) + 1);
    if (ready > 0) break;
    if (ready < 0 && errno != EINTR) Fail("poll");
    if (next != last) {
      last = next;
      since = Clock::now();
    } else if (Clock::now() - since >= timeout) {
      stopped = true;
      (void)::kill(child, SIGKILL);
      break;
    }
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) Fail("waitpid");
  }
  return stopped ? std::nullopt : std::optional<int>(status);
}

Loss Describe(std::optional<int> status, size_t step, double timeout_s) {
  if (!status) return {Loss::Kind::kHang, step, fmt::format("no return within {} s", timeout_s)};
  if (WIFSIGNALED(*status)) {
    const int number = WTERMSIG(*status);
    return {Loss::Kind::kCrash, step, fmt::format("signal {} ({})", number, ::strsignal(number))};
  }
  return {Loss::Kind::kExit, step, fmt::format("exit status {}", WEXITSTATUS(*status))};
}

}  // namespace

Printed Sandbox::Run(size_t count, const std::function<void(size_t)>& step,
                     const std::function<void(const Loss&)>& lost) const {
  const Capture capture;
  SharedArray<Progress> shared(1);
  Progress& progress = shared[0];
  progress.first_printed = kNone;
  while (progress.next < count) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) Fail("pipe");
    const Descriptor read_end(ends[0]);
    Descriptor write_end(ends[1]);
    // What waits in this process's buffers would be the child's to write as well.
    (void)std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) Fail("fork");
    if (child == 0) RunChild(count, step, capture, progress);
    write_end.Close();
    const std::optional<int> status = Wait(child, read_end.number(), progress.next, timeout_s_);
    if (progress.next >= count) break;
    const size_t index = progress.next++;
    // The last words of a dying process are no output of the library.
    if (progress.first_printed == kNone) capture.Clear();
    lost(Describe(status, index, timeout_s_));
  }
  return {capture.text(), progress.first_printed == kNone ? 0 : progress.first_printed.load()};
}

}  // namespace qal::ikcheck
