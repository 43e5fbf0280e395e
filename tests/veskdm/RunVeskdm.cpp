#include "RunVeskdm.h"

#include "BuiltProgram.h"

namespace veskdm::test {

std::string shellQuote(const std::string& word) {
    std::string quoted = "'";
    for (char c : word) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

std::vector<std::string> Outcome::errLines() const {
    return splitLines(err);
}

std::vector<std::string> Outcome::outLines() const {
    return splitLines(out);
}

VeskdmRunner::VeskdmRunner(const vesk::test::TempRoot& root)
    : mRoot(root.path()), mWorkDir(root.path()) {}

Outcome VeskdmRunner::run(const std::vector<std::string>& args, const std::string& input) const {
    std::string inputFile = mWorkDir + "/veskdm.stdin";
    std::string errFile = mWorkDir + "/veskdm.stderr";
    vesk::test::writeFile(inputFile, input);
    std::string command;
    for (const std::string& assignment : environment) command += assignment + " ";
    if (deadlineSeconds > 0) command += "timeout -s KILL " + std::to_string(deadlineSeconds) + " ";
    command += vesk::test::veskdmCommand() + " --root " + shellQuote(mRoot);
    for (const std::string& arg : args) command += " " + shellQuote(arg);
    command += " < " + shellQuote(inputFile) + " 2> " + shellQuote(errFile);
    Outcome outcome;
    outcome.out = vesk::test::runCommand(command, &outcome.status);
    outcome.err = vesk::test::readFile(errFile);
    return outcome;
}

}  // namespace veskdm::test
