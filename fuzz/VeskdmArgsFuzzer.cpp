/*
 * veskdm's reading of its input, without the implementation: a line of `veskdm shell` split
 * into words and bound to a method, and the same bytes as the words of `veskdm call` (one word
 * per line). Binding either succeeds or throws ArgumentError with a one-line message; nothing
 * else may come out. Every word read as JSON prints as text that reads back as the same value.
 */
#include <fuzzer/FuzzedDataProvider.h>
#include <stdint.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "HalJson.h"
#include "MethodTable.h"
#include "ShellTokenizer.h"

namespace {

void bindWords(const std::vector<std::string>& words) {
    if (words.empty()) return;
    try {
        veskdm::BoundCall call = veskdm::bindCall(words);
        if (call.method == nullptr || call.method->name != words[0]) __builtin_trap();
    } catch (const veskdm::ArgumentError& error) {
        // One line, as veskdm prints it.
        if (std::string(error.what()).find('\n') != std::string::npos) __builtin_trap();
    }
}

void readWord(const std::string& word) {
    try {
        veskdm::Json value = veskdm::readArgumentWord(word);
        veskdm::describeValue(value);
        // What is printed reads back as the same value (strings that are UTF-8).
        std::string text = veskdm::dumpJson(value);
        if (text.find("\xef\xbf\xbd") == std::string::npos && veskdm::Json::parse(text) != value)
            __builtin_trap();
    } catch (const veskdm::ArgumentError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    std::string text(reinterpret_cast<const char*>(bytes), size);

    // `veskdm shell`: the first line.
    std::string line = text.substr(0, text.find('\n'));
    try {
        bindWords(veskdm::splitShellLine(line));
    } catch (const veskdm::ArgumentError&) {
    }

    // `veskdm call`: one word per line.
    std::vector<std::string> words;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        words.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    for (const std::string& word : words) readWord(word);
    bindWords(words);

    // Floats print as the shortest text that reads back as the same float.
    if (size >= sizeof(float)) {
        float f;
        memcpy(&f, bytes, sizeof(f));
        if (std::isfinite(f) && std::strtof(veskdm::formatFloat(f).c_str(), nullptr) != f)
            __builtin_trap();
    }
    return 0;
}
