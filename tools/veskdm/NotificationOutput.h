/*
 * The stream on which notifications of the service to this process's callback are printed:
 * the output of the run in progress. A notification that arrives when no run is in progress
 * is dropped.
 */
#pragma once

#include <ostream>
#include <string>

namespace veskdm {

class NotificationOutput {
  public:
    explicit NotificationOutput(std::ostream& out);
    ~NotificationOutput();
    NotificationOutput(const NotificationOutput&) = delete;
    NotificationOutput& operator=(const NotificationOutput&) = delete;

    // Prints one line (line end added) on the stream of the run in progress, if any.
    static void printLine(const std::string& line);

  private:
    std::ostream* mPrevious;
};

}  // namespace veskdm
