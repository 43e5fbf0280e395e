#include "MethodBinder.h"

namespace veskdm {

std::string MethodBinder::parameterList() const {
    std::string text = "(";
    for (size_t i = 0; i < parameters.size(); ++i) {
        if (i > 0) text += ", ";
        text += parameters[i];
    }
    return text + ")";
}

std::string MethodBinder::signature() const {
    return name + parameterList() + " -> " + result;
}

namespace binding {

std::vector<std::string> splitNames(const char* names) {
    std::vector<std::string> out;
    std::string current;
    for (; *names != '\0'; ++names) {
        if (*names == ' ') {
            if (!current.empty()) out.push_back(current);
            current.clear();
        } else {
            current += *names;
        }
    }
    if (!current.empty()) out.push_back(current);
    return out;
}

std::string joinParameters(const std::vector<std::string>& types, const char* names) {
    std::vector<std::string> split = splitNames(names);
    std::string text = "(";
    for (size_t i = 0; i < types.size(); ++i) {
        if (i > 0) text += ", ";
        text += types[i] + " " + split[i];
    }
    return text + ")";
}

void throwArgumentCount(const MethodBinder& binder, size_t given) {
    size_t expected = binder.parameters.size();
    std::string takes = expected == 0 ? "no arguments"
                        : expected == 1
                                ? "1 argument " + binder.parameterList()
                                : std::to_string(expected) + " arguments " + binder.parameterList();
    throw ArgumentError(binder.name + " takes " + takes + ", got " + std::to_string(given));
}

void rethrowForArgument(const std::string& method, size_t index, const std::string& parameter,
                        const ArgumentError& error) {
    throw ArgumentError(method + ": argument " + std::to_string(index + 1) + " (" + parameter +
                        "): " + error.what());
}

}  // namespace binding

}  // namespace veskdm
