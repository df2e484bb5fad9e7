#include "files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <utility>

#include "error.h"
#include "held_signals.h"

namespace qal::io {

namespace {

constexpr mode_t kAnyWrite = 0222;

[[noreturn]] void Fail(std::string_view action, const std::string& path, int error) {
  throw UsageError(
      fmt::format("cannot {} {}: {}", action, path, std::system_category().message(error)));
}

// Where the data goes.
int standard_output = STDOUT_FILENO;  // NOLINT(*-avoid-non-const-global-variables): of the process

// 0, or the error that stopped it.
int WriteAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written >= 0) {
      content.remove_prefix(static_cast<size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// 0, or the error that stopped it. Closes the descriptor either way.
int WriteAndClose(int descriptor, std::string_view content) {
  int error = WriteAll(descriptor, content);
  // A full disk or a lost one may show only now. What has no disk under it says EINVAL.
  if (error == 0 && ::fsync(descriptor) != 0 && errno != EINVAL) error = errno;
  if (::close(descriptor) != 0 && error == 0) return errno;
  return error;
}

// What a path leads to, there or not: not a link is to be replaced, but what it names.
std::filesystem::path FollowLinks(const std::string& path) {
  constexpr int kMostLinks = 40;  // as many as the system follows
  std::error_code none;
  std::filesystem::path target = path;
  for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(target, none); ++i) {
    target = target.parent_path() / std::filesystem::read_symlink(target, none);
  }
  return target;
}

}  // namespace

void KeepWriteSignalsAway() {
  (void)std::signal(SIGPIPE, SIG_IGN);
  (void)std::signal(SIGXFSZ, SIG_IGN);
}

std::string NameOf(const std::string& path) { return path == "-" ? "standard input" : path; }

std::string ReadFile(const std::string& path, size_t largest) {
  const std::string name = NameOf(path);
  static bool standard_input_is_read = false;  // a second time it would be empty
  if (path == "-" && std::exchange(standard_input_is_read, true)) {
    throw UsageError("cannot read standard input twice: - is given for two files");
  }
  // Standard input by a descriptor of its own: it is closed below.
  const int descriptor = path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                     : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) Fail("read", name, errno);
  std::string content;
  std::string block(1 << 16, '\0');
  for (;;) {
    const ssize_t count = ::read(descriptor, block.data(), block.size());
    if (count > 0) {
      content.append(block, 0, static_cast<size_t>(count));
      if (content.size() > largest) {
        (void)::close(descriptor);
        throw UsageError(fmt::format("cannot read {}: larger than {} MiB", name, largest >> 20));
      }
    } else if (count == 0) {
      break;
    } else if (errno != EINTR) {
      const int error = errno;
      (void)::close(descriptor);
      Fail("read", name, error);
    }
  }
  (void)::close(descriptor);
  return content;
}

bool SameFile(const std::string& one, const std::string& other) {
  namespace fs = std::filesystem;
  const fs::path a = FollowLinks(one == "-" ? "/dev/stdin" : one);
  const fs::path b = FollowLinks(other == "-" ? "/dev/stdin" : other);
  std::error_code none;  // what can't be looked at is not there
  if (fs::exists(a, none)) return fs::is_regular_file(a, none) && fs::equivalent(a, b, none);
  const auto full = [&](const fs::path& path) {
    return fs::weakly_canonical(fs::absolute(path, none), none);
  };
  return full(a) == full(b);
}

void WriteFile(const std::string& path, std::string_view content) {
  struct stat status;
  const bool exists = ::stat(path.c_str(), &status) == 0;
  if (!exists && errno != ENOENT) Fail("write", path, errno);
  if (exists && !S_ISREG(status.st_mode)) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) Fail("write", path, errno);
    if (const int error = WriteAndClose(descriptor, content)) Fail("write", path, error);
    return;
  }
  // A rename asks for the folder's permission alone.
  if (exists && ((status.st_mode & kAnyWrite) == 0 ||
                 (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 && errno == EACCES))) {
    throw UsageError(fmt::format(
        "cannot write {}: no write permission; chmod +w, or choose another name", path));
  }
  const std::string target = FollowLinks(path).string();
  // Stopped in between, the temporary file would stay.
  const HeldSignals held;
  std::string temporary = target + ".XXXXXX";
  const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (descriptor < 0) Fail("write", path, errno);
  // As an ordinary new file would be, or as the one it replaces: mkostemp gives 0600.
  const mode_t mask = ::umask(0);
  (void)::umask(mask);
  (void)::fchmod(descriptor, exists ? status.st_mode & 0777 : 0666 & ~mask);
  int error = WriteAndClose(descriptor, content);
  if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) error = errno;
  if (error != 0) {
    (void)::unlink(temporary.c_str());
    Fail("write", path, error);
  }
}

void KeepStandardOutputForData() {
  standard_output = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  (void)::dup2(STDERR_FILENO, STDOUT_FILENO);
}

void WriteStandardOutput(std::string_view content) {
  const int error = WriteAll(standard_output, content);
  if (error != 0 && error != EPIPE) Fail("write", "standard output", error);
}

}  // namespace qal::io
