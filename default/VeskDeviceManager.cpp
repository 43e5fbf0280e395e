/*
 * The facade's entry: the passthrough factory, the forwarders of the core's table
 * (CoreValueMethods.h) and the two generic entry points.
 */
#include "VeskDeviceManager.h"

#include "HidlConversions.h"

namespace vesk::hardware::veskdevicemanager::implementation {

#define VESK_P(Kind) HidlParameter<core::kind::Kind>
#define VESK_ARG(a) coreArgument(a)
#define VESK_DEFINE0(R, method)             \
    Return<R> VeskDeviceManager::method() { \
        return mCore.method();              \
    }
#define VESK_DEFINE1(R, method, K1, a1)                  \
    Return<R> VeskDeviceManager::method(VESK_P(K1) a1) { \
        return mCore.method(VESK_ARG(a1));               \
    }
#define VESK_DEFINE2(R, method, K1, a1, K2, a2)                         \
    Return<R> VeskDeviceManager::method(VESK_P(K1) a1, VESK_P(K2) a2) { \
        return mCore.method(VESK_ARG(a1), VESK_ARG(a2));                \
    }
#define VESK_DEFINE3(R, method, K1, a1, K2, a2, K3, a3)                                \
    Return<R> VeskDeviceManager::method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3) { \
        return mCore.method(VESK_ARG(a1), VESK_ARG(a2), VESK_ARG(a3));                 \
    }
#define VESK_DEFINE4(R, method, K1, a1, K2, a2, K3, a3, K4, a4)                      \
    Return<R> VeskDeviceManager::method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3, \
                                        VESK_P(K4) a4) {                             \
        return mCore.method(VESK_ARG(a1), VESK_ARG(a2), VESK_ARG(a3), VESK_ARG(a4)); \
    }
VESK_CORE_VALUE_METHODS(VESK_DEFINE0, VESK_DEFINE1, VESK_DEFINE2, VESK_DEFINE3, VESK_DEFINE4)
#undef VESK_DEFINE0
#undef VESK_DEFINE1
#undef VESK_DEFINE2
#undef VESK_DEFINE3
#undef VESK_DEFINE4
#undef VESK_ARG
#undef VESK_P

// Reserved: the core only traces it, and the callback is never called.
Return<void> VeskDeviceManager::hwInvoke(const hidl_string& command, hwInvoke_cb /* _hidl_cb */) {
    mCore.hwInvoke(command);
    return Void();
}

// Notifications are not sent to clients: the callback is neither kept nor called, and it does
// not reach the core.
Return<int32_t> VeskDeviceManager::hwRegistCallback(const sp<IVeskDeviceCallback>& /* callback */) {
    return mCore.hwRegistCallback();
}

// The instance name is ignored: every fetch makes a new service object, and with it its core.
IVeskDeviceManager* HIDL_FETCH_IVeskDeviceManager(const char* /* name */) {
    return new VeskDeviceManager();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
