#include <cstddef>
#include <span>
#include <vector>

#include "korvex.h"
#include "simplify/elimination.hpp"
#include "simplify/triangle_test.hpp"

float ScalarProduct(float* a, float* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

float Determinant(float* a, float* b, float* c) {
  return a[0] * b[1] * c[2] + b[0] * c[1] * a[2] + c[0] * a[1] * b[2] -
         (b[0] * (c[2] * a[1]) + (b[1] * a[2] * c[0] + a[0] * (c[1] * b[2])));
}

int intersection(fPointR3* triangle, fPointR3* segment) {
  return korvex::simplify::meet(triangle[0], triangle[1], triangle[2], segment[0], segment[1]);
}

int ChainReduce(std::vector<fPointR3>& chain) {
  korvex::simplify::TriangleElimination elimination;
  chain.resize(elimination.reduce(chain));
  return static_cast<int>(chain.size());
}

void ChainReduceANY(std::vector<fPointR3>& chain, std::vector<Job>& jobs, bool /*unused*/) {
  korvex::simplify::TriangleElimination elimination;
  for (Job& job : jobs) {
    if (job.length <= 0) {
      job.length = 0;
      continue;
    }
    const std::span<fPointR3> piece(chain.data() + job.start, static_cast<std::size_t>(job.length));
    job.length = static_cast<std::int32_t>(elimination.reduce(piece));
  }
}
