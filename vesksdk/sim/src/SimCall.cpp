#include "SimCall.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>

#include "Journal.h"
#include "vesksdk_records.h"

namespace vesk::sim {
namespace {

// Scripted process names are handed out as pointers that must outlive every call.
const char* keptString(const std::string& value) {
    static std::mutex mutex;
    static std::set<std::string> strings;
    std::lock_guard<std::mutex> lock(mutex);
    return strings.insert(value).first->c_str();
}

void fillProcessRecord(void* buffer, const ProcessOut& process) {
    vesk_process_record record{};
    record.name1 = keptString(process.name1);
    record.name2 = keptString(process.name2);
    record.name3 = keptString(process.name3);
    std::copy(process.block.begin(), process.block.end(), record.block);
    record.value64 = process.value64;
    record.valueReal = process.valueReal;
    record.value32 = process.value32;
    memcpy(buffer, &record, sizeof(record));
}

}  // namespace

nlohmann::json text(const char* string) {
    if (!string) return nullptr;
    return string;
}

nlohmann::json inputBytes(const void* data, std::size_t count) {
    if (!data && count > 0) return nullptr;
    nlohmann::json bytes = nlohmann::json::array();
    const auto* byte = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < count; ++i) bytes.push_back(byte[i]);
    return bytes;
}

nlohmann::json inputWords(const unsigned int* words, std::size_t count) {
    if (!words) return nullptr;
    nlohmann::json array = nlohmann::json::array();
    for (std::size_t i = 0; i < count; ++i) array.push_back(words[i]);
    return array;
}

SimCall::SimCall(const char* function, std::initializer_list<nlohmann::json> args)
    : mFunction(function), mArgs(nlohmann::json::array()) {
    ensureStarted();
    for (const nlohmann::json& arg : args) mArgs.push_back(arg);
}

SimCall& SimCall::out(void* buffer, std::size_t capacity) {
    mBuffer = buffer;
    mCapacity = capacity;
    return *this;
}

bool SimCall::hasScriptedResult() {
    mEntry = Script::instance().next(mFunction);
    return mEntry && mEntry->result.has_value();
}

void SimCall::finish(const nlohmann::json& result) {
    if (mEntry && mBuffer) {
        // An empty "out" copies nothing (its data pointer may be null, which memcpy must not get).
        if (mEntry->out && !mEntry->out->empty()) {
            memcpy(mBuffer, mEntry->out->data(), std::min(mEntry->out->size(), mCapacity));
        }
        if (mEntry->process && mCapacity >= sizeof(vesk_process_record)) {
            fillProcessRecord(mBuffer, *mEntry->process);
        }
    }
    Journal::instance().record(mFunction, mArgs, result);
}

}  // namespace vesk::sim
