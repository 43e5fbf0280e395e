/*
 * The simulated board's files in the device root, shared by the board library and veskdm: the
 * state file (every value set), the product description and the block areas, with the lock that
 * several processes take around a read-modify-write.
 */
#pragma once

#include <sys/types.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace vesk::sim {

// ROOT/data/vesksdk and the board's files in it. The folders are made by the first write of a
// file in them (a fresh root), not by asking for a path.
std::string boardDir();
std::string stateFilePath();    // ROOT/data/vesksdk/state.json
std::string productFilePath();  // ROOT/data/vesksdk/product.json

// Opens the board's file at `devicePath` (below the device root, through its jail); with
// O_CREAT, its folders are made when missing and the open is tried once more. -1 with errno.
int openBoardFile(const std::string& devicePath, int flags, mode_t mode = 0644);

// An exclusive flock on ROOT/data/vesksdk/state.lock, held for the object's life. Taken around
// every read-modify-write of the state file and the product description, by every process.
class BoardFileLock {
  public:
    BoardFileLock();
    ~BoardFileLock();
    BoardFileLock(const BoardFileLock&) = delete;
    BoardFileLock& operator=(const BoardFileLock&) = delete;

  private:
    int mFd = -1;
};

// The JSON object in `path`; an empty object when the file is missing. A file that is not a
// JSON object, or that cannot be read (a link planted at it or on its way below the device root
// is not followed), is reported on stderr once and read as empty, as a board with a wiped store.
nlohmann::json readJsonFile(const std::string& path);
// readJsonFile() in two steps, for a reader that keeps what it made of a text: the file's text
// (nothing when it is missing or cannot be read, the latter reported unless told not to), then
// the object in it.
std::optional<std::string> readBoardFileText(const std::string& path, bool reportFailure = true);
nlohmann::json parseBoardJson(const std::string& path, const std::optional<std::string>& text);
// Writes a temporary file beside `path`, flushes it to disk and renames it into place, so that
// a reader sees the old or the new content, never a part; through the device root's jail, so
// `path` lies below the root and no link on the way is followed. False when that fails.
bool writeJsonFileAtomically(const std::string& path, const nlohmann::json& content);

}  // namespace vesk::sim
