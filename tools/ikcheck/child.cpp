#include "child.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

#include "../common/sanitized.h"

namespace qal::ikcheck {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void Limit(__rlimit_resource resource, rlim_t most) {
  const rlimit limit = {most, most};
  (void)::setrlimit(resource, &limit);
}

// Far above what a solver needs, below what brings a machine to a halt.
void SetLimits(double whole_s) {
  Limit(RLIMIT_AS, tools::kLargeSanitizer ? RLIM_INFINITY : rlim_t{4} << 30);
  Limit(RLIMIT_FSIZE, Exchange::kOutputBytes);
  Limit(RLIMIT_CORE, 0);
  Limit(RLIMIT_CPU, 2 * static_cast<rlim_t>(whole_s) + 1);  // of two threads
}

// noexcept: nothing that is thrown may reach the parent's code above, which runs here, too.
[[noreturn]] void BeChild(const sigset_t& mask, double whole_s, Exchange& exchange,
                          const std::function<Bytes()>& work) noexcept {
  (void)::setpgid(0, 0);
  (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  SetLimits(whole_s);
  // A signal has to end the child as a signal, whatever handlers a sanitizer has installed.
  for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
    (void)std::signal(number, SIG_DFL);
  }
  (void)::sigprocmask(SIG_SETMASK, &mask, nullptr);
  const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  (void)::dup2(nothing, STDIN_FILENO);
  exchange.Enter();
  exchange.Answer(work());
}

// Processes that this one is the parent of.
std::vector<pid_t> Children() {
  std::ifstream file("/proc/thread-self/children");
  return {std::istream_iterator<pid_t>(file), {}};
}

int Reap(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

// Whether a child has ended; it can still be reaped.
bool HasEnded(pid_t child) {
  siginfo_t info = {};
  const int result = ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT);
  if (result != 0 && errno != EINTR) Fail("waitid");
  return info.si_pid == child;
}

}  // namespace

ChildRunner::ChildRunner(const Limits& limits) : limits_(limits), children_before_(Children()) {
  // What a child has started, and moved to a group of its own, becomes this process's child.
  (void)::prctl(PR_SET_CHILD_SUBREAPER, 1);
  (void)::sigemptyset(&awaited_);
  (void)std::signal(SIGCHLD, SIG_DFL);  // ignored, no status would be kept
  (void)::sigaddset(&awaited_, SIGCHLD);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    struct sigaction action = {};
    (void)::sigaction(number, nullptr, &action);
    if (action.sa_handler != SIG_IGN) (void)::sigaddset(&awaited_, number);
  }
  (void)::sigprocmask(SIG_BLOCK, &awaited_, &mask_before_);
}

ChildRunner::~ChildRunner() {
  (void)::sigprocmask(SIG_SETMASK, &mask_before_, nullptr);
  (void)::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

ChildEnd ChildRunner::Run(Exchange& exchange, const std::function<Bytes()>& work) const {
  // What waits in this process's buffers would be the child's to write as well.
  (void)std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) Fail("fork");
  if (child == 0) BeChild(mask_before_, limits_.whole_s, exchange, work);
  (void)::setpgid(child, child);  // as the child does: whoever comes first
  const std::string stopped = Wait(child, exchange);
  const Remains remains = EndAll(child);

  ChildEnd end = {ChildEnd::Kind::kAnswered, "", exchange.Output(), {}, remains.others};
  if (!stopped.empty()) {
    end.kind = ChildEnd::Kind::kHang;
    end.how = stopped;
  } else if (WIFSIGNALED(remains.status)) {
    const int number = WTERMSIG(remains.status);
    end.kind = ChildEnd::Kind::kCrash;
    end.how = fmt::format("signal {} ({})", number, ::strsignal(number));
  } else if (auto answer = exchange.Answered(); answer && remains.status == 0) {
    end.answer = *std::move(answer);
  } else {
    end.kind = ChildEnd::Kind::kExit;
    end.how = fmt::format("exit status {} without an answer", WEXITSTATUS(remains.status));
  }
  return end;
}

// Returns why it has to be stopped; empty when it has ended.
std::string ChildRunner::Wait(pid_t child, const Exchange& exchange) const {
  const auto start = Clock::now();
  auto since = start;
  for (std::uint64_t last = 0; !HasEnded(child);) {
    constexpr timespec kLook = {0, 20'000'000};
    const int number = ::sigtimedwait(&awaited_, nullptr, &kLook);
    if (number > 0 && number != SIGCHLD) {
      (void)EndAll(child);
      throw Interrupted{number};
    }
    const auto now = Clock::now();
    if (const std::uint64_t calls = exchange.calls(); calls != last) {
      last = calls;
      since = now;
    }
    if (Seconds(now - since).count() >= limits_.call_s) {
      return fmt::format("no return within {} s", limits_.call_s);
    }
    if (Seconds(now - start).count() >= limits_.whole_s) {
      return fmt::format("no end of all calls within {} s", limits_.whole_s);
    }
  }
  return "";
}

// Ends what there is of the child and of all that it has started.
ChildRunner::Remains ChildRunner::EndAll(pid_t child) const {
  (void)::kill(-child, SIGKILL);
  Remains remains = {Reap(child), false};
  for (;;) {
    std::vector<pid_t> left = Children();
    left.erase(std::remove_if(left.begin(), left.end(),
                              [&](pid_t pid) {
                                return std::count(children_before_.begin(), children_before_.end(),
                                                  pid) > 0;
                              }),
               left.end());
    if (left.empty()) return remains;
    remains.others = true;
    for (const pid_t other : left) {
      (void)::kill(other, SIGKILL);
      (void)Reap(other);
    }
  }
}

}  // namespace qal::ikcheck
