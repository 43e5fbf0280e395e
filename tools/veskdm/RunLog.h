/*
 * Where the log goes during one veskdm run: warnings and errors (every line with --verbose) to
 * the run's stderr, and every line to the --log file as JSON lines. The sink in place before
 * the run comes back at its end.
 */
#pragma once

#include <stdio.h>

#include <memory>
#include <ostream>
#include <string>

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

  private:
    void write(const vesk::host::LogLine& line);

    std::ostream& mErr;
    bool mVerbose = false;
    std::string mJsonPath;
    FILE* mJsonFile = nullptr;
    std::unique_ptr<vesk::host::ScopedLogHandler> mHandler;
};

}  // namespace veskdm
