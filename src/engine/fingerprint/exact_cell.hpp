// The closure map of a sub-chain, made from those of the sub-chains that are shorter by one end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/diagram/code_reduction.hpp"
#include "engine/fingerprint/ray_sweep.hpp"
#include "engine/fingerprint/shared_types.hpp"
#include "engine/fingerprint/type_shares.hpp"
#include "engine/identify/diagram_types.hpp"
#include "engine/identify/identify.hpp"
#include "engine/sphere/arrangement.hpp"
#include "engine/sphere/inner_point.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

// The arcs that one end of a sub-chain sees, cut into pieces, with the types on both sides.
struct TypedPath {
  std::vector<Point> points;           // where pieces begin, and where the last ends
  std::vector<std::int32_t> begin;     // number of the first piece of each arc, and of all pieces
  std::vector<std::int32_t> on_left;   // type, by piece
  std::vector<std::int32_t> on_right;  // type, by piece

  std::size_t arcs() const { return begin.empty() ? 0 : begin.size() - 1; }
};

// What longer sub-chains take over. Without arcs they find all for themselves.
struct TypedCell {
  std::size_t first = 0;
  std::size_t last = 0;
  TypedPath seen_from_first;
  TypedPath seen_from_last;
};

// Makes one cell after the other: one object a thread.
class CellMapper {
 public:
  // `whole` is a chain on the grid of whole_chain(), `scaled` the same with an extent of at most 4.
  // All that is given must outlive this object.
  CellMapper(const Identification& identify, std::span<const Point> whole,
             std::span<const Point> scaled, SharedTypes& types, const Run& run)
      : whole_(whole), types_(types), run_(run), sweep_(scaled), diagrams_(identify) {}

  // The shares of the sub-chain that `cell` names, whose other members are filled for longer ones.
  // `without_last` and `without_first` are the cells that begin or end with it and are next
  // shorter. False, and a cell without arcs, where the sub-chain is in special position, or a
  // region is in doubt.
  bool map(const TypedCell& without_last, const TypedCell& without_first, TypedCell& cell,
           std::vector<ShareOfType>& shares);

 private:
  struct UnknownFace {
    std::size_t face;
    std::vector<InnerPoint> points;  // from the best to the worst
  };

  struct Place {
    Point at;
    std::size_t face;
  };

  void take_over(const Arrangement& arrangement, std::size_t path, const TypedCell& from,
                 const TypedCell& cell);
  std::optional<std::size_t> piece_to_take_over(const Arrangement& arrangement, std::size_t piece,
                                                const TypedPath& theirs, std::size_t arc,
                                                const TypedCell& from, const TypedCell& cell);
  bool is_free(const Point& ray, const TypedCell& from, const TypedCell& cell);
  bool type_the_rest(const Arrangement& arrangement, const TypedCell& cell);
  bool sum_up(const Arrangement& arrangement, std::vector<ShareOfType>& shares) const;
  bool decide(std::size_t face, const Point& direction, std::span<const Point> chain);
  static std::optional<Place> roomy_place(const Arrangement& arrangement);
  TypedPath typed(const Arrangement& arrangement, std::size_t path) const;

  const std::span<const Point> whole_;
  SharedTypes& types_;
  const Run& run_;
  RaySweep sweep_;
  CodeReduction reduction_;
  DiagramTypes diagrams_;
  std::string name_ = "0_1";  // of the type that was found last
  std::int32_t number_ = TypeNumbers::kUnknot;
  std::vector<std::int32_t> type_of_face_;
  std::vector<UnknownFace> unknown_;
};

}  // namespace korvex
