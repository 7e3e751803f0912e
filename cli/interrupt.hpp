// How the program leaves when a signal ends it: at once, and without a half-written file. The
// exported interface cannot be cancelled, so that the signal handler itself does the leaving.
#pragma once

#include <signal.h>

#include <atomic>
#include <stop_token>
#include <string>
#include <thread>

namespace korvex::cli {

// From now on an interrupt (Ctrl-C) ends the program with exit status 130; a hang-up, a request to
// terminate, a pipe that nobody reads any more or a limit that is reached end it as they do by
// default. Each removes the partial file first. A signal that was ignored at the start stays
// ignored.
void leave_cleanly_when_interrupted();

// Creates and opens a file whose name is `pattern` with its last six characters "XXXXXX" replaced.
// From then on the file is removed if a signal ends the program. There is at most one such file at
// a time. Result: its descriptor, with the name in `pattern`; -1 with `errno` set when it could not
// be made.
int create_partial_file(std::string& pattern);

// To be called where the program ends at once, as in a signal handler.
void remove_partial_file_now();

// As long as it lives, the signals that end the program have to wait.
class LeavingPutOff {
 public:
  LeavingPutOff();
  ~LeavingPutOff();
  LeavingPutOff(const LeavingPutOff&) = delete;
  LeavingPutOff& operator=(const LeavingPutOff&) = delete;

 private:
  sigset_t before_;
};

// While one lives, an interrupt or a request to terminate asks the work to stop, so that it can
// leave what it wrote in order; a second one ends the program as leave_cleanly_when_interrupted()
// has it. To be made before the threads of the work, and by one thread.
class StopWhenInterrupted {
 public:
  StopWhenInterrupted();
  ~StopWhenInterrupted();
  StopWhenInterrupted(const StopWhenInterrupted&) = delete;
  StopWhenInterrupted& operator=(const StopWhenInterrupted&) = delete;

  std::stop_token token() const { return stop_.get_token(); }

 private:
  void watch();

  std::stop_source stop_;
  std::atomic<bool> over_ = false;
  std::jthread watcher_;
};

// Whether a line on the terminal waits to be erased, which then happens first.
void note_terminal_line(bool shown);

// The partial file has become somebody's file, or is gone: leave it alone.
void release_partial_file();

}  // namespace korvex::cli
