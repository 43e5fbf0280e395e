#include "NotificationOutput.h"

#include <mutex>

namespace veskdm {
namespace {

std::mutex gMutex;
std::ostream* gOut = nullptr;  // guarded by gMutex

}  // namespace

NotificationOutput::NotificationOutput(std::ostream& out) {
    std::lock_guard<std::mutex> lock(gMutex);
    mPrevious = gOut;
    gOut = &out;
}

NotificationOutput::~NotificationOutput() {
    std::lock_guard<std::mutex> lock(gMutex);
    gOut = mPrevious;
}

void NotificationOutput::printLine(const std::string& line) {
    std::lock_guard<std::mutex> lock(gMutex);
    if (gOut == nullptr) return;
    *gOut << line << "\n";
    gOut->flush();  // a client reads each notification as it comes
}

}  // namespace veskdm
