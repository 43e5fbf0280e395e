/*
 * Runs the built veskdm program with a fresh device root and collects what it printed.
 */
#pragma once

#include <string>
#include <vector>

#include "TestRoot.h"

namespace veskdm::test {

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
    std::vector<std::string> errLines() const;
    std::vector<std::string> outLines() const;
};

class VeskdmRunner {
  public:
    // The run keeps its standard input and error as files in the root.
    explicit VeskdmRunner(const vesk::test::TempRoot& root);
    // The same on the root `root`, the files kept in `workDir`.
    VeskdmRunner(const std::string& root, const std::string& workDir)
        : mRoot(root), mWorkDir(workDir) {}

    // Environment assignments put before the program ("NAME=value").
    std::vector<std::string> environment;
    // When not 0, a run still going after this many seconds is killed (status 137): a test of
    // something that must not wait fails instead of waiting with it.
    int deadlineSeconds = 0;

    // veskdm --root ROOT ARGS... < input
    Outcome run(const std::vector<std::string>& args, const std::string& input = "") const;

    const std::string& rootPath() const { return mRoot; }

  private:
    std::string mRoot;
    std::string mWorkDir;
};

std::string shellQuote(const std::string& word);
std::vector<std::string> splitLines(const std::string& text);

}  // namespace veskdm::test
