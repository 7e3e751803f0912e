// The determinant of a sparse matrix of integer polynomials, coefficients modulo 2^32.
//
// Rows are eliminated by unit pivots, +-t^k and odd multiples of it, the sparsest first (H. M.
// Markowitz, Management Science 3, 255 (1957)); a row or column with a single entry needs no unit.
// Pivots being units, what is left are minors of the matrix over units: degrees grow no faster than
// those of minors. What remains without a unit goes through a method that never divides (R. S.
// Bird, Inf. Process. Lett. 111, 1072 (2011)). Every step holds in any commutative ring, so that
// the result is exact, wrap-around included.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <vector>

#include "alexander/laurent.hpp"

namespace korvex::alexander {

class SparseMatrix {
 public:
  // A zero matrix of `size` rows and columns.
  explicit SparseMatrix(std::size_t size);

  // Sets an entry; the columns of a row must come rising. The coefficients, lowest power first,
  // are not copied. Zeros are allowed anywhere in them.
  void append(std::size_t row, std::size_t column, const int* coefficients, std::size_t count);

  // Coefficients, lowest power first, trimmed; of no rows: {1}. Destroys the matrix.
  std::vector<int> determinant();

 private:
  struct Entry {
    std::size_t column;
    Laurent value;
  };
  using Row = std::pmr::vector<Entry>;
  struct Pivot {
    std::size_t row;
    std::size_t place;  // of its entry in the row
  };

  std::optional<Pivot> cheapest_pivot() const;
  void take(Pivot pivot);
  void eliminate(Row& row, const Laurent& factor, const Row& pivot_row, std::size_t column);
  void multiply(const Laurent& value);
  Laurent remaining_determinant();
  bool is_odd_permutation();

  // Room for the matrices of about 20 crossings; more comes from the heap.
  std::byte room_[12 * 1024];
  std::pmr::monotonic_buffer_resource memory_{room_, sizeof room_};
  std::pmr::vector<Row> rows_;
  std::pmr::vector<std::size_t> left_;       // rows not yet taken, rising
  std::pmr::vector<std::size_t> entries_;    // of each column, in the rows left
  std::pmr::vector<std::size_t> column_of_;  // the pivot's, of each row taken
  Laurent factor_;                           // times unit_: the product of the pivots
  std::uint32_t unit_ = 1;
};

}  // namespace korvex::alexander
