// Carrying out what computes: without the interpreter's lock, until it is done or interrupted.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <stop_token>
#include <utility>

#include "korvex/error.hpp"
#include "korvex/run.hpp"

namespace korvex::python {

namespace py = pybind11;

// While it lives, an interrupt (Ctrl-C) asks `stop` to stop, besides what it does to the
// interpreter. Python's handlers run on the main thread when it is back in the interpreter, so that
// only a computation that ends lets them run. On other threads, and where interrupts are ignored or
// end the process, it does nothing.
class InterruptWatch {
 public:
  explicit InterruptWatch(std::stop_source& stop);
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  // Asks all that are watched to stop.
  static void interrupt_all();

 private:
  std::stop_source& stop_;
  InterruptWatch* outer_ = nullptr;
  bool watches_ = false;
};

// The threads, the seed and what is told of the progress: None, or a callable that takes the
// fraction done. It is called at most 50 times a second, and with 1 at the end.
struct RunArguments {
  unsigned threads;
  std::uint64_t seed;
  py::object progress;

  Run run(std::stop_token stop) const;
};

// What `work` gives for a Run. Where a signal stopped it whose handler in Python raises nothing, it
// is done again.
template <typename Work>
auto carried_out(const RunArguments& arguments, Work&& work) {
  for (;;) {
    std::stop_source stop;
    const Run run = arguments.run(stop.get_token());
    try {
      const InterruptWatch watch(stop);
      const py::gil_scoped_release unlocked;
      return work(run);
    } catch (const Error& error) {
      if (error.code() != ErrorCode::kCancelled || !stop.stop_requested()) throw;
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    }
  }
}

}  // namespace korvex::python
