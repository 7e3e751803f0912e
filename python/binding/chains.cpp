// Reading chains, one after another.
#include <pybind11/stl.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "arrays.hpp"
#include "conversions.hpp"
#include "korvex/read.hpp"
#include "run.hpp"

namespace korvex::python {
namespace {

// The engine hands chains over, Python fetches them: a thread reads a few chains ahead.
class ChainReader {
 public:
  ChainReader(Source source, ReadOptions options)
      : thread_([this, source = std::move(source), options = std::move(options)](
                    const std::stop_token& stop) { read(source, options, stop); }) {}

  ~ChainReader() {
    thread_.request_stop();
    changed_.notify_all();
  }

  // Whether this is a process in which the thread that reads was never begun.
  bool is_of_another_process() const { return getpid() != process_; }

  // Nothing after the last chain. Throws what the reading threw when all before it are fetched.
  std::optional<Chain> next() {
    if (is_of_another_process())
      throw Error(ErrorCode::kInvalidArgument,
                  "the chains are being read by the process before the fork: call read again");
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, kPatience, [this] { return !chains_.empty() || ended_; })) {
      lock.unlock();
      const py::gil_scoped_acquire locked;
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
      lock.lock();
    }
    if (chains_.empty()) {
      if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
      return std::nullopt;
    }
    Chain chain = std::move(chains_.front());
    chains_.pop_front();
    changed_.notify_all();
    return chain;
  }

 private:
  static constexpr std::size_t kAhead = 4;
  static constexpr std::chrono::milliseconds kPatience{50};

  void read(const Source& source, const ReadOptions& options, const std::stop_token& stop) {
    std::exception_ptr failure;
    try {
      visit_chains(source, options, [&](Chain&& chain) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, stop, [this] { return chains_.size() < kAhead; });
        chains_.push_back(std::move(chain));
        changed_.notify_all();
        return !stop.stop_requested();
      });
    } catch (...) {
      failure = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    failure_ = failure;
    ended_ = true;
    changed_.notify_all();
  }

  const pid_t process_ = getpid();
  std::mutex mutex_;
  std::condition_variable_any changed_;
  std::deque<Chain> chains_;
  bool ended_ = false;
  std::exception_ptr failure_;
  std::jthread thread_;  // the last member: it ends before the others do
};

// After a fork there is no thread to wait for: what was the reader's is left as it is.
struct ReaderDeleter {
  void operator()(ChainReader* reader) const {
    if (reader->is_of_another_process()) return;
    const py::gil_scoped_release unlocked;
    delete reader;
  }
};

using ReaderHolder = std::unique_ptr<ChainReader, ReaderDeleter>;

std::optional<py::dict> next_chain(ChainReader& reader) {
  std::optional<Chain> chain = [&] {
    const py::gil_scoped_release unlocked;
    return reader.next();
  }();
  if (!chain) return std::nullopt;
  return arguments_of(*std::move(chain));
}

Numbering numbering_named(const std::string& name) {
  if (name == "author") return Numbering::kAuthor;
  if (name == "label") return Numbering::kLabel;
  throw Error(ErrorCode::kInvalidArgument, "numbering '" + name + "': author or label");
}

GapPolicy gap_policy_named(const std::string& name) {
  if (name == "auto") return GapPolicy::kAuto;
  if (name == "bridge") return GapPolicy::kBridge;
  if (name == "split") return GapPolicy::kSplit;
  if (name == "reject") return GapPolicy::kReject;
  throw Error(ErrorCode::kInvalidArgument, "gaps '" + name + "': auto, bridge, split or reject");
}

using Bound = std::optional<std::pair<std::int32_t, std::string>>;

void take_bound(const Bound& bound, std::int32_t& number, char& code) {
  if (!bound) return;
  number = bound->first;
  if (!bound->second.empty()) code = bound->second.front();
}

ReaderHolder reader_of(const py::object& input, const std::string& name,
                       const std::tuple<std::optional<std::int64_t>, std::optional<std::int64_t>,
                                        std::int64_t>& models,
                       const std::vector<std::string>& chains,
                       const std::vector<std::string>& atoms,
                       const std::pair<Bound, Bound>& residues, const std::string& numbering,
                       double min_plddt, bool closed, std::size_t chain_length,
                       const std::string& topology, const std::string& gaps, double max_gap,
                       bool unwrap) {
  ReadOptions options{.chains = chains,
                      .atoms = atoms,
                      .numbering = numbering_named(numbering),
                      .min_plddt = min_plddt,
                      .closed = closed,
                      .chain_length = chain_length,
                      .topology = topology,
                      .gaps = gap_policy_named(gaps),
                      .max_gap = max_gap,
                      .unwrap = unwrap};
  const auto& [first, last, step] = models;
  if (first) options.models.first = *first;
  if (last) options.models.last = *last;
  options.models.step = step;
  take_bound(residues.first, options.residues.first, options.residues.first_code);
  take_bound(residues.second, options.residues.last, options.residues.last_code);
  Source source = input.is_none() ? Source(name) : Source::memory(input.cast<std::string>(), name);
  return ReaderHolder(new ChainReader(std::move(source), std::move(options)));
}

}  // namespace

void add_chains(py::module_& module) {
  py::class_<ChainReader, ReaderHolder>(module, "ChainReader").def("next", &next_chain);
  module.def("reader", &reader_of);
}

}  // namespace korvex::python
