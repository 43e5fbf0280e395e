#include "ScopedEnvironment.h"

#include <stdlib.h>

namespace veskdm {

ScopedEnvironment::ScopedEnvironment(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const char* value = getenv(name.c_str());
        mSaved.emplace_back(name,
                            value != nullptr ? std::optional<std::string>(value) : std::nullopt);
    }
}

ScopedEnvironment::~ScopedEnvironment() {
    for (const auto& [name, value] : mSaved) {
        if (value) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }
}

}  // namespace veskdm
