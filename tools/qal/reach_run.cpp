#include "reach_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>

#include "../../io/error.h"
#include "../../io/error_text.h"
#include "../../io/messages.h"
#include "../common/progress.h"

namespace qal::tools {

using namespace io;

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// The signal that has come, or 0.
volatile std::sig_atomic_t stop_signal = 0;  // NOLINT(*-avoid-non-const-global-variables)

// While one lives, Ctrl-C and `kill` are heard instead of ending the process. What the program was
// started to ignore, as by nohup, goes on being ignored.
class HeardStops {
 public:
  HeardStops() {
    for (size_t i = 0; i < kStops.size(); ++i) {
      struct sigaction heard = {};
      heard.sa_handler = [](int signal) { stop_signal = signal; };
      (void)::sigaction(kStops[i], nullptr, &before_[i]);
      if (before_[i].sa_handler != SIG_IGN) (void)::sigaction(kStops[i], &heard, nullptr);
    }
  }
  HeardStops(const HeardStops&) = delete;
  HeardStops& operator=(const HeardStops&) = delete;
  ~HeardStops() {
    for (size_t i = 0; i < kStops.size(); ++i) (void)::sigaction(kStops[i], &before_[i], nullptr);
  }

 private:
  static constexpr std::array<int, 3> kStops = {SIGINT, SIGTERM, SIGHUP};
  std::array<struct sigaction, 3> before_ = {};
};

std::string TimeText(double seconds) {
  if (seconds < 100) return fmt::format("{:.0f} s", seconds);
  if (seconds < 6000) return fmt::format("{:.0f} min", seconds / 60);
  return fmt::format("{:.1f} h", seconds / 3600);
}

// Says how far a study is, a few times a second.
class ReachProgress {
 public:
  ReachProgress(double all, double done_before, double poses_each)
      : all_(all), before_(done_before), poses_each_(poses_each) {}

  // @param done directions of cells, with what was done before
  void Show(double done) {
    constexpr double kShowS = 0.2;
    if (SecondsSince(shown_) < kShowS) return;
    shown_ = Clock::now();
    const double rate = (done - before_) / SecondsSince(begin_);
    if (rate <= 0) return;
    progress_.Show(fmt::format("qal reach: {:.1f} %, {:.3g} million poses/s, {} left",
                               100 * done / all_, rate * poses_each_ / 1e6,
                               TimeText((all_ - done) / rate)));
  }

 private:
  Progress progress_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_ = begin_;
  double all_;
  double before_;
  double poses_each_;
};

class ReachRun {
 public:
  explicit ReachRun(const ReachRequest& request)
      : request_(request), part_(request.out + ".part") {}

  ReachFile operator()() {
    {
      const HeardStops heard;
      ExpectOwnOutput(request_.out, request_.description);
      Begin();
      file_.cells.reserve(request_.last - request_.first);
      Study();
      if (stop_signal == 0) WriteReachFile(request_.out, file_);
    }
    if (stop_signal != 0) EndBySignal();
    std::error_code none;  // it isn't in the way
    (void)std::filesystem::remove(part_, none);
    return std::move(file_);
  }

 private:
  void Begin() {
    std::error_code none;
    if (request_.resume && std::filesystem::exists(request_.out, none)) {
      file_ = ReadReachFile(request_.out);
      if (file_.first == request_.first && file_.end() == request_.last) return;  // nothing is left
    }
    const bool begun = std::filesystem::exists(part_, none);
    if (begun) ExpectOwnOutput(part_, request_.description);
    if (begun && !request_.resume) {
      throw UsageError(fmt::format(
          "{} holds a part of this study; add --resume to go on from there, or delete it", part_));
    }
    if (!begun) {
      file_ = {request_.description, request_.study, request_.first};
      return WriteReachFile(part_, file_);
    }
    file_ = ReadReachFile(part_);
    if (file_.first != request_.first || file_.end() > request_.last) {
      throw UsageError(fmt::format("{} is of another shard; delete it, or give that one", part_));
    }
  }

  // As many cells at a time as take half a second or so: what a stop loses.
  void Study() {
    constexpr double kSliceS = 0.5;
    const double directions = DirectionsOf(request_.study);
    ReachProgress progress(static_cast<double>(request_.last - request_.first) * directions,
                           static_cast<double>(file_.cells.size()) * directions,
                           request_.study.poses.empty() ? request_.study.spins : 1);
    size_t slice = 1;
    while (file_.end() < request_.last && stop_signal == 0) {
      const auto before = static_cast<double>(file_.cells.size()) * directions;
      BatchOptions options;
      options.threads = request_.threads;
      options.progress = [&](size_t done) {
        progress.Show(before + static_cast<double>(done));
        return stop_signal == 0;
      };
      const auto begin = Clock::now();
      const auto cells = Reach(request_.arm, request_.study, file_.end(),
                               std::min(request_.last, file_.end() + slice), options);
      if (!cells && stop_signal == 0) throw Failure(ErrorText(cells.error()));
      if (!cells) break;
      file_.cells.insert(file_.cells.end(), cells->begin(), cells->end());
      const double took_s = SecondsSince(begin);
      if (took_s < kSliceS / 2) slice *= 2;
      if (took_s > kSliceS && slice > 1) slice /= 2;
      KeepNowAndThen();
    }
    if (stop_signal != 0) WriteReachFile(part_, file_);
  }

  // At least so far apart that a twentieth of the time goes into it.
  void KeepNowAndThen() {
    constexpr double kApartS = 10;
    if (SecondsSince(kept_) < std::max(kApartS, 20 * keeping_s_)) return;
    const auto begin = Clock::now();
    WriteReachFile(part_, file_);
    keeping_s_ = SecondsSince(begin);
    kept_ = Clock::now();
  }

  void EndBySignal() const {
    SayOnError(
        "qal reach",
        fmt::format(
            "stopped with {} of {} cells done; the same command with --resume goes on from {}",
            file_.cells.size(), request_.last - request_.first, part_));
    (void)std::raise(stop_signal);
  }

  const ReachRequest& request_;
  std::string part_;
  ReachFile file_;
  Clock::time_point kept_ = Clock::now();
  double keeping_s_ = 0;
};

}  // namespace

void ExpectOwnOutput(const std::string& path, const std::string& description) {
  std::error_code none;
  if (!std::filesystem::exists(path, none)) return;
  std::string other = "no file of a reach study";
  try {
    if (ReadReachFile(path).description == description) return;
    other = "of another study";
  } catch (const UsageError&) {  // said below
  }
  throw UsageError(
      fmt::format("{} is there already, and {}; choose another name, or delete it", path, other));
}

io::ReachFile RunReach(const ReachRequest& request) { return ReachRun(request)(); }

}  // namespace qal::tools
