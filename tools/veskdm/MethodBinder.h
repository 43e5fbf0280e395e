/*
 * Binds one interface method, given as a member-function pointer, to text: its signature, the
 * reading of its arguments from command-line words, the call itself and the capture of its
 * result callback all follow from the method's C++ type.
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "HalJson.h"
#include "HalTypeName.h"

namespace veskdm {

using hal::IVeskDeviceManager;

// What one call produced: the value returned (null for Return<void>) and each invocation of
// the result callback, as the array of its arguments.
struct CallOutcome {
    Json returned;
    Json callbacks = Json::array();
};

// The transport reported a failure: the call never reached the service.
class TransportError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The service refused the call's input (a service across processes answers an argument it
// cannot take with an error of its own, EX_ILLEGAL_ARGUMENT): the message says why.
class ServiceRefusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A call with its arguments read, ready to be made on a service object.
using PreparedCall = std::function<CallOutcome(IVeskDeviceManager&)>;

struct MethodBinder {
    std::string name;
    std::vector<std::string> parameters;  // "int32_t state", one per argument
    std::string result;  // "int32_t", or "void, callback(vec<uint8_t> data, uint32_t bytes_read)"
    // Position in the vtable, which the slot order follows (checked by the tests).
    size_t vtableIndex = 0;
    // Reads the argument words; throws ArgumentError naming the method and the argument.
    std::function<PreparedCall(const std::vector<std::string>& words)> prepare;

    std::string parameterList() const;  // "(int32_t red, int32_t green, int32_t blue)"
    std::string signature() const;      // "setSysLedState(int32_t state) -> int32_t"
};

namespace binding {

// The number of space-separated names in a list (checked against the method's arity).
constexpr size_t countNames(const char* names) {
    size_t count = 0;
    bool inName = false;
    for (; *names != '\0'; ++names) {
        bool space = *names == ' ';
        if (!space && !inName) ++count;
        inName = !space;
    }
    return count;
}

std::vector<std::string> splitNames(const char* names);
std::string joinParameters(const std::vector<std::string>& types, const char* names);
[[noreturn]] void throwArgumentCount(const MethodBinder& binder, size_t given);
[[noreturn]] void rethrowForArgument(const std::string& method, size_t index,
                                     const std::string& parameter, const ArgumentError& error);

// The result callback of a method, when its last parameter is one.
template <typename T>
struct ResultCallback : std::false_type {
    static constexpr size_t kArity = 0;
};

template <typename... C>
struct ResultCallback<std::function<void(C...)>> : std::true_type {
    static constexpr size_t kArity = sizeof...(C);
    static std::vector<std::string> typeNames() { return {halTypeName<C>()...}; }
    // Records each invocation as the array of its arguments.
    static std::function<void(C...)> recorder(Json& calls) {
        return [&calls](C... values) {
            Json call = Json::array();
            (call.push_back(toJson(values)), ...);
            calls.push_back(std::move(call));
        };
    }
};

template <typename... A>
struct LastParameter {
    using Type = void;
};
template <typename A0, typename... A>
struct LastParameter<A0, A...> {
    using Type = std::decay_t<std::tuple_element_t<sizeof...(A), std::tuple<A0, A...>>>;
};

// Itanium C++ ABI: a pointer to a virtual member function holds the function's vtable offset
// in bytes, plus one on most targets; ARM marks virtual pointers in the adjustment instead.
template <typename Method>
size_t vtableIndexOf(Method method) {
    struct {
        uintptr_t pointer;
        ptrdiff_t adjustment;
    } raw;
    static_assert(sizeof(method) == sizeof(raw));
    memcpy(&raw, &method, sizeof(raw));
#if defined(__arm__) || defined(__aarch64__)
    return raw.pointer / sizeof(void*);
#else
    return (raw.pointer - 1) / sizeof(void*);
#endif
}

template <typename T>
T readArgument(const std::string& method, const std::string& word, size_t index,
               const std::string& parameter) {
    T value{};
    try {
        fromJson(readArgumentWord(word), value);
    } catch (const UnreadableJson& error) {
        rethrowForArgument(
                method, index, parameter,
                ArgumentError("expected " + describeForm(Form<T>{}) + ", got " + error.what()));
    } catch (const ArgumentError& error) {
        rethrowForArgument(method, index, parameter, error);
    }
    return value;
}

template <typename R, typename... A>
class Binding {
  public:
    using Method = ::android::hardware::Return<R> (IVeskDeviceManager::*)(A...);
    using Callback = ResultCallback<typename LastParameter<A...>::Type>;
    static constexpr bool kHasCallback = Callback::value;
    static constexpr size_t kInputs = sizeof...(A) - (kHasCallback ? 1 : 0);
    static constexpr size_t kResults = Callback::kArity;

    static MethodBinder make(const char* name, Method method, const char* parameterNames,
                             const char* resultNames) {
        MethodBinder binder;
        binder.name = name;
        binder.vtableIndex = vtableIndexOf(method);
        std::vector<std::string> names = splitNames(parameterNames);
        std::vector<std::string> types = inputTypeNames(std::make_index_sequence<kInputs>());
        for (size_t i = 0; i < kInputs; ++i) binder.parameters.push_back(types[i] + " " + names[i]);
        if constexpr (kHasCallback) {
            binder.result = halTypeName<R>() + ", callback" +
                            joinParameters(Callback::typeNames(), resultNames);
        } else {
            binder.result = halTypeName<R>();
        }
        binder.prepare = [method, binder](const std::vector<std::string>& words) {
            if (words.size() != kInputs) throwArgumentCount(binder, words.size());
            return prepare(method, binder, words, std::make_index_sequence<kInputs>());
        };
        return binder;
    }

  private:
    template <size_t I>
    using Input = std::decay_t<std::tuple_element_t<I, std::tuple<A...>>>;

    template <size_t... I>
    static std::vector<std::string> inputTypeNames(std::index_sequence<I...>) {
        return {halTypeName<Input<I>>()...};
    }

    template <size_t... I>
    static PreparedCall prepare(Method method, const MethodBinder& binder,
                                const std::vector<std::string>& words, std::index_sequence<I...>) {
        // Braced initialisation reads the arguments from left to right, so the first bad one
        // is the one reported.
        std::tuple<Input<I>...> values{
                readArgument<Input<I>>(binder.name, words[I], I, binder.parameters[I])...};
        return [method, values](IVeskDeviceManager& service) {
            static_cast<void>(values);  // an empty tuple for a method without arguments
            CallOutcome outcome;
            auto invoke = [&](auto&&... callback) {
                return (service.*method)(std::get<I>(values)...,
                                         std::forward<decltype(callback)>(callback)...);
            };
            ::android::hardware::Return<R> returned = [&] {
                if constexpr (kHasCallback) {
                    return invoke(Callback::recorder(outcome.callbacks));
                } else {
                    return invoke();
                }
            }();
            if (!returned.isOk()) throw TransportError(returned.description());
            if constexpr (std::is_void_v<R>) {
                outcome.returned = nullptr;
            } else {
                outcome.returned = toJson(static_cast<R>(returned));
            }
            return outcome;
        };
    }
};

template <size_t kParameterNames, size_t kResultNames, typename R, typename... A>
MethodBinder bind(const char* name,
                  ::android::hardware::Return<R> (IVeskDeviceManager::*method)(A...),
                  const char* parameterNames, const char* resultNames) {
    using B = Binding<R, A...>;
    static_assert(kParameterNames == B::kInputs, "one name per argument");
    static_assert(kResultNames == B::kResults, "one name per argument of the result callback");
    return B::make(name, method, parameterNames, resultNames);
}

}  // namespace binding

// One table entry: the method's name, its argument names and the names of its result
// callback's arguments (space-separated), with the counts checked at compile time.
#define VESKDM_BIND(METHOD, PARAMETER_NAMES, RESULT_NAMES)                  \
    ::veskdm::binding::bind<::veskdm::binding::countNames(PARAMETER_NAMES), \
                            ::veskdm::binding::countNames(RESULT_NAMES)>(   \
            #METHOD, &::veskdm::IVeskDeviceManager::METHOD, PARAMETER_NAMES, RESULT_NAMES)

}  // namespace veskdm
