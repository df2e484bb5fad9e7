#include "child.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "../../io/error.h"
#include "../../io/held_signals.h"
#include "sanitized.h"

namespace qal::tools {

using namespace io;

namespace {

// What a child leaves for its parent, in memory that both see.
constexpr int kThere = 0x5EA1ED;  // no byte three times: what runs amok in memory doesn't write it
struct Message {
  int there;  // kThere: it is
  int status;
  char text[4096];
};

// The message of the child that this process is, if it is one that went on in its parent's place.
Message* own_message = nullptr;  // NOLINT(*-avoid-non-const-global-variables): of the process

// A new child process, as fork says, with a message to leave.
struct Child {
  Child() {
    (void)std::signal(SIGCHLD, SIG_DFL);  // ignored, as by some parents, it would leave no status
    void* const memory =
        ::mmap(nullptr, sizeof(Message), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    (void)std::fflush(nullptr);  // what waits to be written would be the child's to write as well
    id = memory != MAP_FAILED ? ::fork() : -1;
    if (id < 0) throw Failure(fmt::format("cannot start a process: {}", std::strerror(errno)));
    message = static_cast<Message*>(memory);
    if (id == 0) (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  }

  pid_t id;
  Message* message;  // for as long as the process lives
};

void Limit(decltype(RLIMIT_CORE) resource, rlim_t most) {
  const rlimit limit = {most, most};
  (void)::setrlimit(resource, &limit);
}

// noexcept: what the work throws must not reach the parent's code above, which runs here, too.
[[noreturn]] void Work(const Child& child, const HeldSignals& held,
                       const std::function<std::string()>& work, bool limited) noexcept {
  (void)::setpgid(0, 0);
  // As a program expects them, whatever the tools or a sanitizer have made of them.
  for (const int signal : {SIGPIPE, SIGXFSZ, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
    (void)std::signal(signal, SIG_DFL);
  }
  (void)std::signal(SIGTTOU, SIG_IGN);  // in the background of a terminal, it may still write there
  (void)::pthread_sigmask(SIG_UNBLOCK, &held.signals(), nullptr);
  const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  (void)::dup2(nothing, STDIN_FILENO);
  Limit(RLIMIT_CORE, 0);
  if (limited && !kLargeSanitizer) Limit(RLIMIT_DATA, rlim_t{1} << 31);
  const std::string text = work();
  std::strncpy(child.message->text, text.c_str(), sizeof(child.message->text) - 1);
  child.message->there = kThere;
  ::_exit(0);
}

// Waits for a child's end, and says what waitpid does; nothing: time was up.
std::optional<int> Await(pid_t child, const HeldSignals& held, std::optional<int> timeout_s,
                         const std::function<void(int)>& stop) {
  const timespec timeout = {timeout_s.value_or(0), 0};
  int status = 0, stopped = 0;
  bool late = false;
  while (::waitpid(child, &status, late ? 0 : WNOHANG) == 0) {
    const int signal = ::sigtimedwait(&held.signals(), nullptr, timeout_s ? &timeout : nullptr);
    late = signal < 0 && errno == EAGAIN;
    if (late) stop(SIGKILL);
    if (signal > 0 && signal != SIGCHLD) stop(stopped = signal);
  }
  if (stopped != 0) (void)::raise(stopped);  // it is held
  return late ? std::nullopt : std::optional<int>(status);
}

std::string HowText(std::optional<int> status, std::optional<int> timeout_s) {
  if (!status) return fmt::format("no end in {} s", timeout_s.value_or(0));
  if (WIFEXITED(*status)) return fmt::format("status {}", WEXITSTATUS(*status));
  return fmt::format("signal {}, {}", WTERMSIG(*status), ::strsignal(WTERMSIG(*status)));
}

}  // namespace

ChildEnd RunInChild(const std::function<std::string()>& work, std::optional<int> timeout_s) {
  const HeldSignals held;
  const Child child;
  if (child.id == 0) Work(child, held, work, timeout_s.has_value());
  (void)::setpgid(child.id, child.id);  // whoever of the two comes first
  const std::optional<int> status =
      Await(child.id, held, timeout_s, [&](int) { (void)::kill(-child.id, SIGKILL); });
  return {child.message->there == kThere ? std::optional<std::string>(child.message->text)
                                         : std::nullopt,
          status == 0, HowText(status, timeout_s)};
}

void GoOnInChild(const std::string& solver) {
  const HeldSignals held;
  const Child child;
  if (child.id == 0) {
    own_message = child.message;
    return;
  }
  const std::optional<int> status =
      Await(child.id, held, std::nullopt, [&](int signal) { (void)::kill(child.id, signal); });
  if (child.message->there == kThere) throw ChildStatus{child.message->status};
  throw Failure(fmt::format("{}: the solver ended the process ({}); ikcheck tells more about it",
                            solver, HowText(status, std::nullopt)));
}

int EndOfChild(int status) {
  if (own_message != nullptr) *own_message = {kThere, status, ""};
  return status;
}

}  // namespace qal::tools
