#include "GlobalOptionChecks.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Errors.h"
#include "vesk/sim/ScriptCheck.h"

namespace veskdm {

bool isDirectory(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

namespace {

std::string parentOf(const std::string& path) {
    size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

}  // namespace

void checkRootPath(const std::string& root, const std::string& namedBy) {
    if (root.empty()) throw UsageError(namedBy + ": the device root is an empty path");
    struct stat st;
    if (stat(root.c_str(), &st) != 0) throw UsageError(namedBy + ": no such directory " + root);
    if (!S_ISDIR(st.st_mode)) throw UsageError(namedBy + ": " + root + " is not a directory");
}

void checkNotEmpty(const std::string& path, const std::string& option) {
    if (path.empty()) throw UsageError(option + ": expected a file name, got an empty one");
}

void checkJournalPath(const std::string& path) {
    struct stat st;
    if (stat(path.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) {
            throw UsageError("board journal " + path + ": is a directory");
        }
        if (access(path.c_str(), W_OK) != 0) {
            throw UsageError("board journal " + path + ": " + strerror(errno));
        }
        return;
    }
    std::string parent = parentOf(path);
    if (!isDirectory(parent) || access(parent.c_str(), W_OK | X_OK) != 0) {
        throw UsageError("board journal " + path + ": " + parent + " is not a writable directory");
    }
}

void checkScriptFile(const std::string& path) {
    if (isDirectory(path)) throw UsageError("board script " + path + ": is a directory");
    std::ifstream in(path);
    if (!in) throw UsageError("board script " + path + ": cannot be read");
    std::stringstream text;
    text << in.rdbuf();
    nlohmann::json script = nlohmann::json::parse(text.str(), nullptr, false);
    if (script.is_discarded()) throw UsageError("board script " + path + ": unreadable JSON");
    std::string reason;
    if (!vesk::sim::checkScript(script, &reason)) {
        throw UsageError("board script " + path + ": " + reason);
    }
}

}  // namespace veskdm
