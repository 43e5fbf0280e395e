#include "TreeSnapshot.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "TestRoot.h"

namespace veskdm::test {
namespace {

void addBelow(const std::string& dir, std::map<std::string, std::string>& files) {
    DIR* d = opendir(dir.c_str());
    if (d == nullptr) return;
    while (dirent* entry = readdir(d)) {
        std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        std::string path = dir + "/" + name;
        struct stat st;
        if (lstat(path.c_str(), &st) != 0) continue;
        if (S_ISDIR(st.st_mode)) {
            files[path] = "<dir>";
            addBelow(path, files);
        } else if (S_ISLNK(st.st_mode)) {
            char target[4096];
            ssize_t length = readlink(path.c_str(), target, sizeof(target));
            files[path] = "-> " + std::string(target, length > 0 ? static_cast<size_t>(length) : 0);
        } else {
            files[path] = vesk::test::readFile(path);
        }
    }
    closedir(d);
}

}  // namespace

std::map<std::string, std::string> treeSnapshot(const std::string& dir) {
    std::map<std::string, std::string> files;
    addBelow(dir, files);
    return files;
}

}  // namespace veskdm::test
