#include <korvex.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  bool error = false;
  const std::vector<ChainAtom> chain = ChainRead(argv[1], error);
  if (error) {
    std::cerr << argv[1] << ": no chain in it\n";
    return 1;
  }
  std::srand(1);
  int votes[42] = {};
  FindMajorKnot(chain, votes, 2, 100);  // closure 2: each end to its own random far point
  std::cout << GiveTheNameOfKnot(votes) << "\n";
}
