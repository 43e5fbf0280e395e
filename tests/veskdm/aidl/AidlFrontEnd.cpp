#include "AidlFrontEnd.h"

#include <signal.h>

#include "AidlService.h"
#include "FrontEndCall.h"
#include "ImplLoader.h"
#include "TestRoot.h"

namespace veskdm::test {

using nlohmann::json;

AidlFrontEnd::AidlFrontEnd(const std::string& root, const json& script)
    : mRoot(root),
      mScriptPath(root + ".script.json"),
      mJournalPath(root + ".journal.jsonl"),
      mLogPath(root + ".log.jsonl") {
    vesk::test::writeFile(mScriptPath, script.dump());
    start();
}

AidlFrontEnd::~AidlFrontEnd() {
    stop();
    for (const std::string& path : {mScriptPath, mJournalPath, mLogPath}) unlink(path.c_str());
}

void AidlFrontEnd::start() {
    const std::string socket = mRoot + "/dev/socket/veskdevicemanager";
    mService = std::make_unique<vesk::test::ServerProcess>(
            VESK_BINARY_DIR "/bin/vesk.hardware.veskdevicemanager-service",
            std::vector<std::string>{}, "listening on " + socket, mRoot + ".service.err",
            vesk::test::ServerProcess::Environment{{"VESK_ROOT", mRoot},
                                                   {"VESK_BOARD_SCRIPT", mScriptPath},
                                                   {"VESK_BOARD_JOURNAL", mJournalPath},
                                                   {"VESK_LOG_FILE", mLogPath}});
    if (!mService->listening()) return;
    try {
        mClient = connectAidlService(socket);
    } catch (const LoadError&) {
        mClient = nullptr;
    }
    // What the service's start logged and called is the front end's, not a call's.
    newLines(mJournalPath, mJournalRead);
    newLines(mLogPath, mLogRead);
}

void AidlFrontEnd::stop() {
    mClient = nullptr;
    if (mService != nullptr && !mService->hasEnded()) mService->stop(SIGTERM);
    mService.reset();
    unlink((mRoot + ".service.err").c_str());
}

json AidlFrontEnd::newLines(const std::string& path, size_t& offset) const {
    std::string text = vesk::test::readFile(path);
    json lines = json::array();
    size_t end;
    while (offset < text.size() && (end = text.find('\n', offset)) != std::string::npos) {
        lines.push_back(json::parse(text.substr(offset, end - offset)));
        offset = end + 1;
    }
    return lines;
}

json AidlFrontEnd::call(const std::vector<std::string>& words) {
    json reply;
    reply["answer"] = answerOf(words, *mClient);
    reply["journal"] = newLines(mJournalPath, mJournalRead);
    json log = json::array();
    for (const json& line : newLines(mLogPath, mLogRead)) {
        log.push_back({line.at("priority"), line.at("tag"), line.at("message")});
    }
    reply["log"] = log;
    return withoutRoot(reply, mRoot);
}

}  // namespace veskdm::test
