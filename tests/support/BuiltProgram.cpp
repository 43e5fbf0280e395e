#include "BuiltProgram.h"

namespace vesk::test {
namespace {

std::string quoted(const std::string& word) {
    std::string result = "'";
    for (char c : word) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

}  // namespace

std::vector<std::string> builtProgramArgv(const std::string& program) {
    // The emulator's words, separated by '|' (empty in a native build).
    const std::string emulator = VESK_TEST_EMULATOR;
    std::vector<std::string> argv;
    size_t start = 0;
    while (start < emulator.size()) {
        size_t end = emulator.find('|', start);
        if (end == std::string::npos) end = emulator.size();
        argv.push_back(emulator.substr(start, end - start));
        start = end + 1;
    }
    argv.push_back(program);
    return argv;
}

std::string builtProgramCommand(const std::string& program) {
    std::string command;
    for (const std::string& word : builtProgramArgv(program)) {
        if (!command.empty()) command += ' ';
        command += quoted(word);
    }
    return command;
}

std::string veskdmCommand() {
    return builtProgramCommand(VESK_TEST_BINARY_DIR "/bin/veskdm");
}

}  // namespace vesk::test
