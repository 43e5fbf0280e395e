#include "EnvTestSupport.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>
#include <fstream>
#include <map>
#include <regex>

#include "TestRoot.h"

namespace vesk::test {

Variables factoryVariables() {
    return {
            {"bootdelay", "1"},
            {"baudrate", "115200"},
            {"bootcmd", "run storeboot"},
            {"storeboot", "run get_os_type; run storage_param; run boot_normal"},
            {"hdmimode", "1080p60hz"},
            {"outputmode", "1080p60hz"},
            {"is.bestmode", "true"},
            {"custom_mode", "0"},
            {"colorattribute", "444,8bit"},
            {"cvbsmode", "576cvbs"},
            {"display_width", "1920"},
            {"display_height", "1080"},
            {"firstboot", "1"},
            {"lock", "10101000"},
            {"upgrade_step", "2"},
    };
}

std::string hex8(uint32_t value) {
    char text[16];
    snprintf(text, sizeof(text), "%08x", value);
    return text;
}

Variables attributeList(const Ubootenv& env) {
    Variables list;
    for (const EnvAttribute* node = &env.attributes; node != nullptr; node = node->next) {
        list.emplace_back(node->key, node->value);
    }
    return list;
}

std::map<std::string, std::string> variablesOf(const Ubootenv& env) {
    std::map<std::string, std::string> values;
    for (const auto& [key, value] : attributeList(env)) values[key] = value;
    return values;
}

bool EnvLog::operator==(const EnvLog& other) const {
    return priority == other.priority && function == other.function && text == other.text;
}

void PrintTo(const EnvLog& line, std::ostream* os) {
    std::string text;
    for (char c : line.text) text += c == '\n' ? std::string("\\n") : std::string(1, c);
    *os << "{" << line.priority << ", " << line.function << ", \"" << text << "\"}";
}

namespace {

// Each function of the source file and the lines of its body.
std::multimap<std::string, std::pair<int, int>> functionBodies() {
    std::multimap<std::string, std::pair<int, int>> bodies;
    std::ifstream in(VESK_SOURCE_DIR "/default/DisplayModeControl/Ubootenv.cpp");
    EXPECT_TRUE(in.good());
    std::regex definition(R"(^[A-Za-z].*\bUbootenv::(~?\w+)\()");
    std::string line;
    std::string current;
    int start = 0;
    for (int number = 1; std::getline(in, line); ++number) {
        std::smatch match;
        if (current.empty() && std::regex_search(line, match, definition)) {
            current = match[1];
            start = number;
        } else if (!current.empty() && line == "}") {
            bodies.emplace(current, std::make_pair(start, number));
            current.clear();
        }
    }
    return bodies;
}

}  // namespace

EnvLogs parseEnvLog(const std::vector<vesk::host::LogLine>& captured) {
    static const auto bodies = functionBodies();
    static const std::regex prefix(R"(^\[/Ubootenv\.cpp, (\w+), (\d+)\] )");
    EnvLogs lines;
    for (const auto& line : captured) {
        EXPECT_EQ("Ubootenv", line.tag) << line.message;
        std::smatch match;
        if (!std::regex_search(line.message, match, prefix)) {
            ADD_FAILURE() << "no [file, function, line] prefix: " << line.message;
            lines.push_back({line.priority, "", line.message});
            continue;
        }
        std::string function = match[1];
        int number = std::stoi(match[2]);
        bool inside = false;
        auto [first, last] = bodies.equal_range(function);
        for (auto it = first; it != last; ++it) {
            inside |= number > it->second.first && number < it->second.second;
        }
        EXPECT_TRUE(inside) << "line " << number << " is not in " << function << ": "
                            << line.message;
        lines.push_back({line.priority, function, match.suffix(), number});
    }
    return lines;
}

EnvLogs takeEnvLog() {
    EnvLogs lines = parseEnvLog(vesk::host::capturedLog());
    vesk::host::clearCapturedLog();
    return lines;
}

std::string clipped(const std::string& function, int line, const std::string& text) {
    std::string prefix = "[/Ubootenv.cpp, " + function + ", " + std::to_string(line) + "] ";
    return text.substr(0, 1023 - prefix.size());
}

EnvLog updateLine(const std::string& name, const std::string& value) {
    return {kInfo, "updateValue",
            "[ubootenv] update value name [" + name + "]: value [" + value + "] \n"};
}

EnvLogs repeated(const EnvLogs& lines, int count) {
    EnvLogs all;
    for (int i = 0; i < count; ++i) all.insert(all.end(), lines.begin(), lines.end());
    return all;
}

EnvLogs operator+(EnvLogs a, const EnvLogs& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

}  // namespace vesk::test
