/*
 * The stable-AIDL service program on the given root, under the given board script, and veskdm's
 * client of it (the HIDL interface over its proxy, across processes): the calls it is sent are
 * made through that client, and their board calls and log lines read from the service's journal
 * and JSON log (FrontEndCall.h).
 */
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "MethodBinder.h"
#include "ServerProcess.h"

namespace veskdm::test {

class AidlFrontEnd {
  public:
    AidlFrontEnd(const std::string& root, const nlohmann::json& script);
    ~AidlFrontEnd();
    AidlFrontEnd(const AidlFrontEnd&) = delete;
    AidlFrontEnd& operator=(const AidlFrontEnd&) = delete;

    // Whether the service listens and the client reached it.
    bool ready() const { return mClient != nullptr; }
    nlohmann::json call(const std::vector<std::string>& words);
    // Stops the service (the client first), and starts it again with a new client, as init
    // restarts it on a board.
    void stop();
    void start();

  private:
    // The lines a file gained since `offset`, each parsed, and the new offset.
    nlohmann::json newLines(const std::string& path, size_t& offset) const;

    std::string mRoot;
    std::string mScriptPath;
    std::string mJournalPath;
    std::string mLogPath;
    size_t mJournalRead = 0;
    size_t mLogRead = 0;
    std::unique_ptr<vesk::test::ServerProcess> mService;
    ::android::sp<IVeskDeviceManager> mClient;
};

}  // namespace veskdm::test
