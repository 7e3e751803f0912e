// Which passage follows which along a curve.
#include "engine/diagram/course.hpp"

#include <gtest/gtest.h>

namespace korvex {
namespace {

TEST(Course, OfAClosedCurveComesBackToItsFirstPassage) {
  const Course course(4);
  EXPECT_EQ(course.strands(), 4u);
  for (std::size_t passage = 0; passage < 3; ++passage)
    EXPECT_EQ(course.strand_after(passage), passage + 1);
  EXPECT_EQ(course.strand_after(3), 0u);
  EXPECT_EQ(course.passage_before(0), 3u);
  for (std::size_t strand = 0; strand < 4; ++strand) {
    EXPECT_EQ(course.strand_after(course.passage_before(strand)), strand);
    EXPECT_FALSE(course.begins_with(strand) || course.ends_with(strand));
  }
}

TEST(Course, OfAnOpenCurveHasAStrandBehindItsLastPassage) {
  const Course course(4, Curve::kOpen);
  EXPECT_EQ(course.strands(), 5u);
  EXPECT_EQ(course.strand_after(3), 4u);
  EXPECT_EQ(course.passage_before(4), 3u);
  for (std::size_t strand = 0; strand < 5; ++strand) {
    EXPECT_EQ(course.begins_with(strand), strand == 0);
    EXPECT_EQ(course.ends_with(strand), strand == 4);
  }
}

TEST(Course, WithoutPassagesIsOneStrandOrNone) {
  EXPECT_EQ(Course(0).strands(), 0u);
  const Course open(0, Curve::kOpen);
  EXPECT_EQ(open.strands(), 1u);
  EXPECT_TRUE(open.begins_with(0) && open.ends_with(0));
}

}  // namespace
}  // namespace korvex
