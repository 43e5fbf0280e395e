/*
 * Service entry: the passthrough factory, construction and the two generic entry points.
 */
#include "VeskDeviceManager.h"

#include <vesksdk.h>

#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::implementation {

VeskDeviceManager::VeskDeviceManager() {
    trace("VeskDeviceManager", VESK_TRACE_LINE("VeskDeviceManager"));
    bi_init_product_config();  // once per fetched instance; its result does not matter here
}

// Reserved: kept empty on purpose; the callback is never called.
Return<void> VeskDeviceManager::hwInvoke(const hidl_string& /* command */,
                                         hwInvoke_cb /* _hidl_cb */) {
    trace("hwInvoke", VESK_TRACE_LINE("hwInvoke"));
    return Void();
}

// Notifications are not sent to clients; the callback is neither kept nor called.
Return<int32_t> VeskDeviceManager::hwRegistCallback(const sp<IVeskDeviceCallback>& /* callback */) {
    trace("hwRegistCallback", VESK_TRACE_LINE("hwRegistCallback"));
    return 0;
}

// The instance name is ignored: every fetch makes a new service object.
IVeskDeviceManager* HIDL_FETCH_IVeskDeviceManager(const char* /* name */) {
    return new VeskDeviceManager();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
