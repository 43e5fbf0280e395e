/*
 * The HIDL facade in-process, as veskdm's passthrough calls reach it: the implementation library
 * loaded into a process of its own on the given root, under the given board script, making the
 * calls it is sent one by one on one service object (FrontEndCall.h). The facade ends its
 * process on some inputs, as it does on a board: the call's answer then says how it ended, and
 * the next call needs a new front end (as init restarts the service).
 */
#pragma once

#include <sys/types.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace veskdm::test {

class HidlFrontEnd {
  public:
    HidlFrontEnd(const std::string& root, const nlohmann::json& script);
    ~HidlFrontEnd();
    HidlFrontEnd(const HidlFrontEnd&) = delete;
    HidlFrontEnd& operator=(const HidlFrontEnd&) = delete;

    nlohmann::json call(const std::vector<std::string>& words);
    // Whether its process has ended (a call ended it).
    bool ended() const { return mPid < 0; }

  private:
    std::string mRoot;
    pid_t mPid = -1;
    int mRequests = -1;
    int mReplies = -1;
    std::string mBuffered;
};

}  // namespace veskdm::test
