#include "engine/drawing/triangulation.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <span>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/diagram/plane_diagram.hpp"

namespace korvex {
namespace {

using Triangle = std::array<std::size_t, 3>;  // counter-clockwise
using Walk = std::vector<std::size_t>;        // vertices about a face, which lies to the left

class Builder {
 public:
  explicit Builder(const GaussCode& code) : code_(code), course_(code.size()) {
    plane_.draw(code, Curve::kClosed);
    number_crossings();
    number_strands();
  }

  DiagramTriangulation built(std::size_t outer) {
    for (std::size_t face = 0; face < plane_.faces(); ++face) {
      const Walk walk = walk_around(face);
      const Walk rim = is_simple(walk) ? walk : add_ring(walk);
      if (face != outer) add_cone(rim);
    }
    return {flowers(), along_curve(), places()};
  }

 private:
  void number_crossings() {
    crossing_.resize(code_.size());
    for (std::size_t k = 0; k < code_.size(); ++k) {
      const std::size_t mate = at(code_[k].mate);
      crossing_[k] = mate < k ? crossing_[mate] : count_++;
    }
  }

  // A loop needs two vertices to be no double edge.
  void number_strands() {
    for (std::size_t strand = 0; strand < course_.strands(); ++strand) {
      const bool is_loop = crossing_[course_.passage_before(strand)] == crossing_[strand];
      strand_.push_back(is_loop ? Walk{count_, count_ + 1} : Walk{count_});
      count_ += strand_.back().size();
    }
  }

  // The vertices of a dart but the one that it leads to.
  Walk vertices_of(std::size_t dart) const {
    const std::size_t strand = dart / 2;
    const bool along = dart % 2 == 0;
    Walk walk = strand_[strand];
    if (!along) std::reverse(walk.begin(), walk.end());
    walk.insert(walk.begin(), crossing_[along ? course_.passage_before(strand) : strand]);
    return walk;
  }

  Walk walk_around(std::size_t face) const {
    Walk walk;
    for (const std::int32_t dart : plane_.darts_of(face)) {
      const Walk part = vertices_of(at(dart));
      walk.insert(walk.end(), part.begin(), part.end());
    }
    return walk;
  }

  static bool is_simple(const Walk& walk) {
    return std::set<std::size_t>(walk.begin(), walk.end()).size() == walk.size();
  }

  // A vertex in the middle of a face.
  void add_cone(const Walk& walk) {
    const std::size_t apex = count_++;
    for (std::size_t k = 0; k < walk.size(); ++k)
      triangles_.push_back({walk[k], walk[(k + 1) % walk.size()], apex});
  }

  // A ring of vertices inside a face that meets a crossing twice; it meets none of them twice.
  Walk add_ring(const Walk& walk) {
    Walk ring;
    for (std::size_t k = 0; k < walk.size(); ++k) ring.push_back(count_++);
    for (std::size_t k = 0; k < walk.size(); ++k) {
      const std::size_t next = (k + 1) % walk.size();
      triangles_.push_back({walk[k], walk[next], ring[k]});
      triangles_.push_back({walk[next], ring[next], ring[k]});
    }
    return ring;
  }

  std::vector<Flower> flowers() const {
    std::vector<std::map<std::size_t, std::size_t>> next(count_);
    for (const auto& [a, b, c] : triangles_) {
      next[a][b] = c;
      next[b][c] = a;
      next[c][a] = b;
    }
    std::vector<Flower> flowers(count_);
    for (std::size_t vertex = 0; vertex < count_; ++vertex)
      flowers[vertex] = flower_of(next[vertex]);
    return flowers;
  }

  static Flower flower_of(const std::map<std::size_t, std::size_t>& next) {
    std::set<std::size_t> led_to;
    for (const auto& [from, to] : next) led_to.insert(to);
    Flower flower;
    std::size_t petal = next.begin()->first;
    for (const auto& [from, to] : next) {
      if (led_to.contains(from)) continue;
      petal = from;
      flower.on_rim = true;
    }
    for (std::size_t k = 0; k < next.size(); ++k) {
      flower.petals.push_back(petal);
      petal = next.at(petal);
    }
    if (flower.on_rim) flower.petals.push_back(petal);
    return flower;
  }

  Walk along_curve() const {
    Walk walk;
    for (std::size_t k = 0; k < code_.size(); ++k) {
      const Walk part = strand_[course_.strand_after(k)];
      walk.push_back(crossing_[k]);
      walk.insert(walk.end(), part.begin(), part.end());
    }
    return walk;
  }

  Walk places() const {
    Walk places;
    std::size_t place = 0;
    for (std::size_t k = 0; k < code_.size(); ++k) {
      places.push_back(place);
      place += 1 + strand_[course_.strand_after(k)].size();
    }
    return places;
  }

  const GaussCode& code_;
  Course course_;
  PlaneDiagram plane_;
  std::size_t count_ = 0;              // vertices so far
  std::vector<std::size_t> crossing_;  // by passage
  std::vector<Walk> strand_;           // vertices of each strand along the curve
  std::vector<Triangle> triangles_;
};

}  // namespace

DiagramTriangulation triangulated(const GaussCode& code, std::size_t outer) {
  return Builder(code).built(outer);
}

}  // namespace korvex
