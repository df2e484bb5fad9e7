#ifndef QAL_TESTS_SUPPORT_PRIVATE_MEMBERS_H_
#define QAL_TESTS_SUPPORT_PRIVATE_MEMBERS_H_

#include "kinematics/ikfunc.h"

// The private operations of Ikfunc by name: hidden::SIGN(-0.0). An explicit instantiation may name
// private members, so neither the class nor its header has to know about tests. Each source file
// has an instantiation of its own.
namespace hidden {
namespace {

template <typename Tag, auto kFunction>
struct Reveal {
  friend constexpr auto Find(Tag) { return kFunction; }
};

#define QAL_REVEAL(name)                            \
  struct name##Tag {                                \
    friend constexpr auto Find(name##Tag);          \
  };                                                \
  template struct Reveal<name##Tag, &Ikfunc::name>; \
  constexpr auto name = Find(name##Tag{})

QAL_REVEAL(SIGN);
QAL_REVEAL(NORM);
QAL_REVEAL(SectionFourNum);
QAL_REVEAL(PointAngTest);
QAL_REVEAL(CountEerotEetrans);
QAL_REVEAL(EndMoveXYZ);
QAL_REVEAL(EndRotXYZ);
QAL_REVEAL(PointDis);
QAL_REVEAL(PointAdd);
QAL_REVEAL(EndMove);
QAL_REVEAL(CheckRobotJointStep);
QAL_REVEAL(countjointdis);
QAL_REVEAL(countmaxruntime);
QAL_REVEAL(caltimeslover);
QAL_REVEAL(getJointStepLength);

#undef QAL_REVEAL

}  // namespace
}  // namespace hidden

#endif  // QAL_TESTS_SUPPORT_PRIVATE_MEMBERS_H_
