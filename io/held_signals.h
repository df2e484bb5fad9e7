#ifndef QAL_IO_HELD_SIGNALS_H_
#define QAL_IO_HELD_SIGNALS_H_

#include <csignal>

namespace qal::io {

/// While one lives, the signals that tell a program to stop wait: Ctrl-C, Ctrl-\, a closed
/// terminal, `kill`. Those that the program was started to ignore, as by nohup, go on being
/// ignored.
class HeldSignals {
 public:
  HeldSignals() {
    (void)sigemptyset(&signals_);
    (void)sigaddset(&signals_, SIGCHLD);
    for (const int stop : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
      struct sigaction action;
      const bool ignored = ::sigaction(stop, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
      if (!ignored) (void)sigaddset(&signals_, stop);
    }
    (void)::pthread_sigmask(SIG_BLOCK, &signals_, &before_);
  }
  ~HeldSignals() { (void)::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  /// They, and SIGCHLD: what to wait for while a child process runs.
  const sigset_t& signals() const { return signals_; }

 private:
  sigset_t signals_;
  sigset_t before_;
};

}  // namespace qal::io

#endif  // QAL_IO_HELD_SIGNALS_H_
