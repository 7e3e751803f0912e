#include <cmath>

#include "preprocess.h"

bool CompareEq(double a, double b, double eps) { return std::fabs(a - b) < eps; }
