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
    // How call, shell and debug reach the service: "passthrough" (the implementation library
    // in a child process of the run) or "aidl" (the AIDL service running on the root).
    std::string via = "passthrough";
};

class RunLog;

class Context {
  public:
    Context(const Streams& streams, const RootChoice& root)
        : in(streams.in), out(streams.out), err(streams.err), mDefaultRoot(root) {}
    // The same run on other streams (a child process of the run writes to pipes).
    Context(const Context& run, const Streams& streams)
        : in(streams.in),
          out(streams.out),
          err(streams.err),
          options(run.options),
          rootOptionGiven(run.rootOptionGiven),
          mDefaultRoot(run.mDefaultRoot),
          mRootSet(run.mRootSet) {}

    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    GlobalOptions options;
    bool rootOptionGiven = false;
    // A command that runs several steps (shell) settles the log of each (RunLog.h).
    RunLog* log = nullptr;
    // Where a child process of the run tells which step it is at (ServiceProcess.h); -1 when
    // the run is not in one.
    int stepFd = -1;

    // The root this run uses, and whether the user named it (--root or $VESK_ROOT).
    std::string rootPath() const;
    bool rootNamed() const;

    // Makes the run's root this process's device root, with its layout made where missing,
    // and returns it. The default location is made when missing (CommandError when it cannot
    // be); a named root exists (checked with the global options).
    std::string useRoot();
    // For commands that only read: the root as it is, nothing made in it; CommandError when it
    // does not exist.
    std::string useExistingRoot();

    // Tells the process that runs this one which step it is at ("line 3"); nothing outside a
    // child process.
    void markStep(const std::string& where) const;

  private:
    RootChoice mDefaultRoot;
    bool mRootSet = false;
};

}  // namespace veskdm
