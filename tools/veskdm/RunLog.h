/*
 * Where the log goes during one veskdm run: every line to the --log file as JSON lines; to the
 * run's stderr every line as it comes with --verbose, else only warnings and errors, and those
 * only once the command they belong to has succeeded: a failure is its one line, nothing more.
 * The sink in place before the run comes back at its end.
 */
#pragma once

#include <stdio.h>

#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "vesk/host/LogSink.h"

namespace veskdm {

class RunLog {
  public:
    explicit RunLog(std::ostream& err);
    ~RunLog();
    RunLog(const RunLog&) = delete;
    RunLog& operator=(const RunLog&) = delete;

    void setVerbose(bool verbose) { mVerbose = verbose; }
    // Records every line in `path`, made at the first line; throws UsageError when it can be
    // neither appended to nor made.
    void recordTo(const std::string& path);

    // The warnings and errors held since the last release() or drop(): printed when what
    // logged them succeeded, dropped when it failed (its failure line says it).
    void release();
    void drop();

  private:
    void write(const vesk::host::LogLine& line);

    std::ostream& mErr;
    std::mutex mMutex;
    std::vector<std::string> mHeld;  // guarded by mMutex
    bool mVerbose = false;
    std::string mJsonPath;
    FILE* mJsonFile = nullptr;
    std::unique_ptr<vesk::host::ScopedLogHandler> mHandler;
};

}  // namespace veskdm
