#ifndef QAL_IO_HELD_SIGNALS_H_
#define QAL_IO_HELD_SIGNALS_H_

#include <csignal>

namespace qal::io {

/// While one lives, the signals that tell a program to stop wait: Ctrl-C, a closed terminal,
/// `kill`.
class HeldSignals {
 public:
  HeldSignals() {
    sigset_t stops;
    (void)sigemptyset(&stops);
    for (const int stop : {SIGINT, SIGTERM, SIGHUP}) (void)sigaddset(&stops, stop);
    (void)::pthread_sigmask(SIG_BLOCK, &stops, &before_);
  }
  ~HeldSignals() { (void)::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  sigset_t before_;
};

}  // namespace qal::io

#endif  // QAL_IO_HELD_SIGNALS_H_
