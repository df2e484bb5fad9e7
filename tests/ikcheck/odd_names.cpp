// Libraries that don't have the names that are expected, or not all of them.

#if defined(WANTS_MISSING)
void NowhereDefined();
#endif

#define TAKES(Real) (const Real*, const Real*, const Real*, ikfast::IkSolutionListBase<Real>&)

namespace ikfast {

template <typename T>
class IkSolutionListBase;

#if defined(SINGLE_PRECISION)
bool ComputeIk TAKES(float) { return false; }
void ComputeFk(const float*, float*, float*) {}
#elif defined(WITHOUT_FORWARD)
bool ComputeIk TAKES(double) { return false; }
#elif defined(WANTS_MISSING)
void ComputeFk(const double*, double*, double*) { NowhereDefined(); }
#endif

}  // namespace ikfast

#if defined(OTHER_NAMESPACE)
namespace my_arm {
bool ComputeIk TAKES(double) { return false; }
}  // namespace my_arm
#endif

#if defined(PLAIN_NAMES)
extern "C" {
bool ComputeIk TAKES(double) { return false; }
void ComputeFk(const double*, double* eetrans, double* eerot) {
  for (int i = 0; i < 3; ++i) eetrans[i] = 0;
  for (int i = 0; i < 9; ++i) eerot[i] = i % 4 == 0 ? 1 : 0;
}
}
#endif
