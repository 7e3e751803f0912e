// How the program leaves when a signal ends it: at once, and without a half-written file. The
// exported interface cannot be cancelled, so that the signal handler itself does the leaving.
#pragma once

#include <string>

namespace korvex::cli {

// From now on an interrupt (Ctrl-C) ends the program with exit status 130; a hang-up, a request to
// terminate, a pipe that nobody reads any more or a limit that is reached end it as they do by
// default. Each removes the partial file first. A signal that was ignored at the start stays
// ignored.
void leave_cleanly_when_interrupted();

// Creates and opens nothing but a name: makes an empty file from `pattern`, whose last six
// characters "XXXXXX" are replaced, and from then on the file is removed if a signal ends the
// program. There is at most one such file at a time. Result: its path; empty with `errno` set when
// it could not be made.
std::string create_partial_file(std::string pattern);

// Whether a line on the terminal waits to be erased, which then happens first.
void note_terminal_line(bool shown);

// The partial file has become somebody's file, or is gone: leave it alone.
void release_partial_file();

}  // namespace korvex::cli
