/*
 * What a command of one veskdm run works with: its streams, the global options and the device
 * root, made this process's root only when a command asks for it.
 */
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "Veskdm.h"

namespace veskdm {

struct GlobalOptions {
    std::string root;
    std::string log;
    std::string boardJournal;
    std::string boardScript;
    bool verbose = false;
};

class RunLog;

class Context {
  public:
    Context(const Streams& streams, const RootChoice& root)
        : in(streams.in), out(streams.out), err(streams.err), mDefaultRoot(root) {}

    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    GlobalOptions options;
    bool rootOptionGiven = false;
    // A command that runs several steps (shell) settles the log of each (RunLog.h).
    RunLog* log = nullptr;

    // Makes the run's root this process's device root and returns it. The default location is
    // made with its factory layout when missing; a root named by --root or $VESK_ROOT must
    // exist (CommandError otherwise).
    std::string useRoot();
    // As useRoot(), but a missing root is an error also at the default location: for commands
    // that only read.
    std::string useExistingRoot();

  private:
    std::string chosenPath() const;
    RootChoice mDefaultRoot;
    bool mRootSet = false;
};

}  // namespace veskdm
