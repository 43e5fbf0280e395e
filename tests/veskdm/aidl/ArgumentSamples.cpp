#include "ArgumentSamples.h"

#include <cctype>
#include <map>
#include <stdexcept>

namespace veskdm::test {

namespace {

// Values a name fixes, whatever its integer type.
const std::map<std::string, std::string>& byName() {
    static const std::map<std::string, std::string> values = {
            {"data_size", std::to_string(kSampleReadSize)},
            {"length", std::to_string(kSampleReadSize)},
            {"size", std::to_string(kSampleReadSize)},
            {"offset", "0"},
            {"timeout_ms", "10"},
            {"timeout", "5"},
            {"baudrate", "115200"},
            {"width", "1920"},
            {"height", "1080"},
            {"fps", "60"},
            {"refresh", "59.94"},
            // The process's own pid for the scheduling calls; no process the board started.
            {"pid", "0"},
            {"device", "/dev/watchdog"},
            {"path", "/data/vesk/block.bin"},
            {"name", "vesk"},
            {"mode", "performance"},
            {"source", "/data/log/vesk"},
            {"target", "/data/log/vesk.tar.gz"},
            {"command", "status"},
    };
    return values;
}

// Values of a type (its name as veskdm methods prints it): at the ends of its range, so that a
// conversion that loses a bit or a sign shows.
const std::map<std::string, std::string>& byType() {
    static const std::map<std::string, std::string> values = {
            {"int32_t", "-2"},
            {"uint32_t", "4000000000"},
            {"uint8_t", "255"},
            {"int8_t", "-128"},
            {"uint16_t", "65535"},
            {"float", "0.5"},
            {"string", "\"vesk\""},
            {"vec<uint8_t>", "[1,2,254,255]"},
            {"vec<uint32_t>", "[2026,11,25,4294967295]"},
            {"VeskLogInfo",
             R"({"level":"D","base":"/data/log","mode":"ring","total_size":"64M","once_size":"8M"})"},
            {"IVeskDeviceCallback", "callback"},
    };
    return values;
}

}  // namespace

std::string sampleArgument(const std::string& parameter) {
    size_t space = parameter.rfind(' ');
    std::string type = parameter.substr(0, space);
    std::string name = parameter.substr(space + 1);
    // A name's number is for a 32-bit parameter; the narrow ones take the ends of their ranges,
    // which the AIDL service checks.
    bool isText = type == "string";
    bool isWide = type == "int32_t" || type == "uint32_t" || type == "float";
    if (auto named = byName().find(name); named != byName().end()) {
        bool textValue = named->second[0] == '/' || isalpha(named->second[0]);
        if (isText && textValue) return "\"" + named->second + "\"";
        if (isWide && !textValue) return named->second;
    }
    auto typed = byType().find(type);
    if (typed == byType().end()) throw std::logic_error("no sample of type " + type);
    return typed->second;
}

std::vector<std::string> sampleArguments(const MethodBinder& method) {
    std::vector<std::string> words{method.name};
    for (const std::string& parameter : method.parameters)
        words.push_back(sampleArgument(parameter));
    return words;
}

}  // namespace veskdm::test
