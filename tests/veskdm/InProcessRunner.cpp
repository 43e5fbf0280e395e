#include "InProcessRunner.h"

#include <stdlib.h>

#include <sstream>

#include "Veskdm.h"

namespace veskdm::test {

EnvironmentScope::EnvironmentScope(const std::vector<std::pair<std::string, std::string>>& variables) {
    for (const auto& [name, value] : variables) {
        const char* old = getenv(name.c_str());
        mSaved.push_back({name, {old != nullptr, old != nullptr ? old : ""}});
        if (value.empty()) {
            unsetenv(name.c_str());
        } else {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
}

EnvironmentScope::~EnvironmentScope() {
    for (auto it = mSaved.rbegin(); it != mSaved.rend(); ++it) {
        if (it->second.first) {
            setenv(it->first.c_str(), it->second.second.c_str(), 1);
        } else {
            unsetenv(it->first.c_str());
        }
    }
}

Outcome runInProcess(const std::vector<std::string>& args, const std::string& input) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    Outcome outcome;
    outcome.status = runVeskdm(args, Streams{in, out, err}, rootFromEnvironment());
    outcome.out = out.str();
    outcome.err = err.str();
    return outcome;
}

Outcome InProcessRunner::run(const std::vector<std::string>& args, const std::string& input) const {
    EnvironmentScope scope(environment);
    std::vector<std::string> words = {"--root", mRoot};
    words.insert(words.end(), args.begin(), args.end());
    return runInProcess(words, input);
}

}  // namespace veskdm::test
