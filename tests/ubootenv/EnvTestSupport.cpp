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

std::vector<std::string> envStrings(const Variables& variables) {
    std::vector<std::string> strings;
    for (const auto& [key, value] : variables) strings.push_back(key + "=" + value);
    return strings;
}

std::string dataArea(const std::vector<std::string>& strings, size_t size) {
    std::string area;
    for (const auto& text : strings) area += text + std::string(1, '\0');
    if (area.size() < size) area.resize(size, '\0');
    return area.substr(0, size);
}

uint32_t crcOf(const std::string& bytes) {
    return static_cast<uint32_t>(
            crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::string envCopy(const std::string& data, size_t crcBytes) {
    uint32_t crc = crcOf(data.substr(0, crcBytes));
    std::string copy(4, '\0');
    memcpy(&copy[0], &crc, 4);
    return copy + data;
}

std::string twoCopies(const std::string& copyA, const std::string& copyB, char fill) {
    std::string image = copyA;
    if (image.size() < 65536) image.resize(65536, fill);
    image.resize(65536);
    return image + copyB;
}

std::string envImage(const Variables& variables) {
    std::string copy = envCopy(dataArea(envStrings(variables)));
    return copy + copy;
}

uint32_t storedCrc(const std::string& image, size_t offset) {
    uint32_t crc = 0;
    memcpy(&crc, image.data() + offset, 4);
    return crc;
}

bool copyValid(const std::string& image, size_t offset, size_t dataBytes) {
    if (image.size() < offset + 4 + dataBytes) return false;
    return storedCrc(image, offset) == crcOf(image.substr(offset + 4, dataBytes));
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
