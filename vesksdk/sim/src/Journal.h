/*
 * The call journal: one JSON line per board call, appended to a file and/or kept in memory.
 */
#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vesk::sim {

class Journal {
  public:
    static Journal& instance();

    // Appends every later call to `path` (created if missing); replaces an earlier file.
    bool openFile(const std::string& path, std::string* error);
    void startMemory();
    void clearMemory();
    // Closes the file and stops keeping calls in memory.
    void stop();
    std::vector<nlohmann::json> memory();

    void record(const char* function, const nlohmann::json& args, const nlohmann::json& result);

  private:
    std::mutex mMutex;
    int mFd = -1;
    bool mKeepInMemory = false;
    std::vector<nlohmann::json> mMemory;
};

}  // namespace vesk::sim
