#include "../../tools/ikcheck/sandbox.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <tuple>
#include <vector>

#include "../../tools/ikcheck/shared_array.h"

namespace {

using namespace qal::ikcheck;

// Steps 2, 4, 6 and 7 don't return; all others have to have run, each once.
TEST(Sandbox, GoesOnAfterEachStepThatDoesNotReturn) {
  SharedArray<int> ran(9);
  std::vector<std::tuple<size_t, Loss::Kind, std::string>> losses;
  const Printed printed = Sandbox(0.2).Run(
      ran.size(),
      [&](size_t i) {
        if (i == 2) (void)std::raise(SIGSEGV);
        if (i == 4) std::exit(7);
        for (volatile bool hanging = i == 6; hanging;) {
        }
        if (i == 7) throw 1;
        ++ran[i];
      },
      [&](const Loss& loss) { losses.emplace_back(loss.step, loss.kind, loss.how); });

  for (const size_t i : {0u, 1u, 3u, 5u, 8u}) EXPECT_EQ(ran[i], 1) << i;
  const decltype(losses) expected = {{2, Loss::Kind::kCrash, "signal 11 (Segmentation fault)"},
                                     {4, Loss::Kind::kExit, "exit status 7"},
                                     {6, Loss::Kind::kHang, "no return within 0.2 s"},
                                     {7, Loss::Kind::kCrash, "signal 6 (Aborted)"}};
  EXPECT_EQ(losses, expected);
  EXPECT_EQ(printed.text, "");  // what the runtime says of step 7 is nothing that a step wrote
}

TEST(Sandbox, TellsWhichStepWroteFirst) {
  const Printed printed = Sandbox(5).Run(
      5,
      [](size_t i) {
        if (i == 2) std::cout << "two ";
        if (i == 3) std::printf("three ");
        if (i == 4) (void)!::write(STDERR_FILENO, "four", 4);
      },
      [](const Loss&) { FAIL(); });
  EXPECT_EQ(printed.step, 2u);
  EXPECT_EQ(printed.text, "two three four");
}

// 30 steps of 0.05 s are no hang for a timeout of 0.4 s: it is the step's, not the run's.
TEST(Sandbox, GivesEachStepItsTime) {
  (void)Sandbox(0.4).Run(
      30, [](size_t) { ::usleep(50000); }, [](const Loss&) { FAIL(); });
}

TEST(Sandbox, EndsWhenTheListenerThrows) {
  SharedArray<int> ran(3);
  const auto step = [&](size_t i) {
    ++ran[i];
    if (i == 1) std::abort();
  };
  const auto lost = [](const Loss&) { throw std::runtime_error("enough"); };
  EXPECT_THROW((void)Sandbox(5).Run(ran.size(), step, lost), std::runtime_error);
  EXPECT_EQ(ran[1], 1);
  EXPECT_EQ(ran[2], 0);
}

}  // namespace
