#include "FrontEndCall.h"

#include <new>

namespace veskdm::test {

using nlohmann::json;

json answerOf(const std::vector<std::string>& words, IVeskDeviceManager& service) {
    try {
        BoundCall call = bindCall(words);
        return runCall(call, service);
    } catch (const ServiceRefusal& error) {
        return json{{"refused", error.what()}};
    } catch (const TransportError& error) {
        return json{{"transport", error.what()}};
    } catch (const std::bad_alloc&) {
        return json{{"out of memory", true}};
    }
}

json withoutRoot(const json& value, const std::string& root) {
    if (value.is_string()) {
        std::string text = value;
        for (size_t at; (at = text.find(root)) != std::string::npos;)
            text.replace(at, root.size(), "ROOT");
        return text;
    }
    if (value.is_array() || value.is_object()) {
        json copy = value;
        for (auto& item : copy) item = withoutRoot(item, root);
        return copy;
    }
    return value;
}

}  // namespace veskdm::test
