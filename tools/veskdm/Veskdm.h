/*
 * veskdm as a library: one run of the command line on given streams and a given device root.
 * main() wires it to the process; the tests run it in-process.
 */
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace veskdm {

// The device root a run uses when --root does not name one.
struct RootChoice {
    std::string path;
    // A root named by the user ($VESK_ROOT) must exist; the default location is made on first
    // use by the commands that work in the root.
    bool named = false;
};

struct Streams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
};

// Runs `args` (the words after the program name) and returns the exit status: 0, 1 when a
// command failed, 2 for bad input. Every problem is one line "veskdm: ..." on streams.err.
// The process's environment ($VESK_ROOT, $VESK_BOARD_JOURNAL, $VESK_BOARD_SCRIPT) and log sink
// are as before when it returns; the device root of the process stays the one it used.
int runVeskdm(const std::vector<std::string>& args, const Streams& streams, const RootChoice& root);

// $VESK_ROOT when set (named), else $XDG_STATE_HOME/veskdm/root, else
// ~/.local/state/veskdm/root.
RootChoice rootFromEnvironment();

}  // namespace veskdm
