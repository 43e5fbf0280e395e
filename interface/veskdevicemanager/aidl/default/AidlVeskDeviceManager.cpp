/*
 * The front end's entry: the methods of the core's table (CoreValueMethods.h), the two generic
 * entry points and dump.
 */
#include "AidlVeskDeviceManager.h"

#include <string>
#include <vector>

namespace aidl::vesk::hardware::veskdevicemanager {

// Each argument is taken in order, so that the first one refused is the one named.
#define VESK_P(Kind) AidlParameter<core::kind::Kind>
#define VESK_TAKE(Kind, a) args.take(core::kind::Kind{}, a, #a)
#define VESK_OK ::ndk::ScopedAStatus::ok()
#define VESK_DEFINE0(R, method)                                       \
    ::ndk::ScopedAStatus VeskDeviceManager::method(R* _aidl_return) { \
        *_aidl_return = mCore.method();                               \
        return VESK_OK;                                               \
    }
#define VESK_DEFINE1(R, method, K1, a1)                                              \
    ::ndk::ScopedAStatus VeskDeviceManager::method(VESK_P(K1) a1, R* _aidl_return) { \
        Arguments args(mCore, #method);                                              \
        auto&& c1 = VESK_TAKE(K1, a1);                                               \
        if (args.refused()) return args.refusal();                                   \
        *_aidl_return = mCore.method(c1);                                            \
        return VESK_OK;                                                              \
    }
#define VESK_DEFINE2(R, method, K1, a1, K2, a2)                                                     \
    ::ndk::ScopedAStatus VeskDeviceManager::method(VESK_P(K1) a1, VESK_P(K2) a2, R* _aidl_return) { \
        Arguments args(mCore, #method);                                                             \
        auto&& c1 = VESK_TAKE(K1, a1);                                                              \
        auto&& c2 = VESK_TAKE(K2, a2);                                                              \
        if (args.refused()) return args.refusal();                                                  \
        *_aidl_return = mCore.method(c1, c2);                                                       \
        return VESK_OK;                                                                             \
    }
#define VESK_DEFINE3(R, method, K1, a1, K2, a2, K3, a3)                                         \
    ::ndk::ScopedAStatus VeskDeviceManager::method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3, \
                                                   R* _aidl_return) {                           \
        Arguments args(mCore, #method);                                                         \
        auto&& c1 = VESK_TAKE(K1, a1);                                                          \
        auto&& c2 = VESK_TAKE(K2, a2);                                                          \
        auto&& c3 = VESK_TAKE(K3, a3);                                                          \
        if (args.refused()) return args.refusal();                                              \
        *_aidl_return = mCore.method(c1, c2, c3);                                               \
        return VESK_OK;                                                                         \
    }
#define VESK_DEFINE4(R, method, K1, a1, K2, a2, K3, a3, K4, a4)                                 \
    ::ndk::ScopedAStatus VeskDeviceManager::method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3, \
                                                   VESK_P(K4) a4, R* _aidl_return) {            \
        Arguments args(mCore, #method);                                                         \
        auto&& c1 = VESK_TAKE(K1, a1);                                                          \
        auto&& c2 = VESK_TAKE(K2, a2);                                                          \
        auto&& c3 = VESK_TAKE(K3, a3);                                                          \
        auto&& c4 = VESK_TAKE(K4, a4);                                                          \
        if (args.refused()) return args.refusal();                                              \
        *_aidl_return = mCore.method(c1, c2, c3, c4);                                           \
        return VESK_OK;                                                                         \
    }
VESK_CORE_VALUE_METHODS(VESK_DEFINE0, VESK_DEFINE1, VESK_DEFINE2, VESK_DEFINE3, VESK_DEFINE4)
#undef VESK_DEFINE0
#undef VESK_DEFINE1
#undef VESK_DEFINE2
#undef VESK_DEFINE3
#undef VESK_DEFINE4
#undef VESK_OK
#undef VESK_TAKE
#undef VESK_P

// Reserved: the core only traces it, and the answer is null.
::ndk::ScopedAStatus VeskDeviceManager::hwInvoke(const std::string& command,
                                                 std::optional<std::string>* _aidl_return) {
    mCore.hwInvoke(command);
    *_aidl_return = std::nullopt;
    return ::ndk::ScopedAStatus::ok();
}

// Notifications are not sent to clients: the callback is neither kept nor called, and it does
// not reach the core. Its reference is released when the call returns.
::ndk::ScopedAStatus VeskDeviceManager::hwRegistCallback(
        const std::shared_ptr<IVeskDeviceCallback>& /* callback */, int32_t* _aidl_return) {
    *_aidl_return = mCore.hwRegistCallback();
    return ::ndk::ScopedAStatus::ok();
}

binder_status_t VeskDeviceManager::dump(int fd, const char** args, uint32_t numArgs) {
    std::vector<std::string> options;
    for (uint32_t i = 0; i < numArgs; ++i) options.emplace_back(args[i] == nullptr ? "" : args[i]);
    mCore.debug(fd, options);
    return STATUS_OK;
}

}  // namespace aidl::vesk::hardware::veskdevicemanager
