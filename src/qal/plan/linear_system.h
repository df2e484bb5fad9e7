#ifndef QAL_PLAN_LINEAR_SYSTEM_H_
#define QAL_PLAN_LINEAR_SYSTEM_H_

#include <cmath>
#include <utility>

#include "../model/pose.h"

// Internal: six linear equations.
namespace qal {

/// A matrix as the product of two triangular ones, by Gaussian elimination with row exchanges.
class LinearSystem {
 public:
  /// @param matrix by rows
  explicit LinearSystem(const double (&matrix)[6][6]) {
    for (int i = 0; i < 6; ++i) {
      row_[i] = i;
      for (int j = 0; j < 6; ++j) lu_[i][j] = matrix[i][j];
    }
    for (int k = 0; k < 6; ++k) Eliminate(k);
  }

  /// The smallest pivot: next to 0 for a singular matrix.
  double smallest_pivot() const { return smallest_pivot_; }

  Joints Solve(const double (&right)[6]) const {
    Joints x;
    for (size_t i = 0; i < 6; ++i) {
      double sum = right[row_[i]];
      for (size_t j = 0; j < i; ++j) sum -= lu_[i][j] * x[j];
      x[i] = sum;
    }
    for (size_t i = 6; i-- > 0;) {
      double sum = x[i];
      for (size_t j = i + 1; j < 6; ++j) sum -= lu_[i][j] * x[j];
      x[i] = sum * inverse_pivot_[i];
    }
    return x;
  }

 private:
  void Eliminate(int k) {
    int pivot = k;
    for (int i = k + 1; i < 6; ++i) {
      if (std::fabs(lu_[i][k]) > std::fabs(lu_[pivot][k])) pivot = i;
    }
    if (pivot != k) {
      std::swap(row_[k], row_[pivot]);
      for (int j = 0; j < 6; ++j) std::swap(lu_[k][j], lu_[pivot][j]);
    }
    const double size = std::fabs(lu_[k][k]);
    if (k == 0 || !(size >= smallest_pivot_)) smallest_pivot_ = size;
    inverse_pivot_[k] = 1 / lu_[k][k];
    for (int i = k + 1; i < 6; ++i) {
      const double factor = lu_[i][k] * inverse_pivot_[k];
      lu_[i][k] = factor;
      for (int j = k + 1; j < 6; ++j) lu_[i][j] -= factor * lu_[k][j];
    }
  }

  double lu_[6][6];
  double inverse_pivot_[6];
  int row_[6];
  double smallest_pivot_ = 0;
};

}  // namespace qal

#endif  // QAL_PLAN_LINEAR_SYSTEM_H_
