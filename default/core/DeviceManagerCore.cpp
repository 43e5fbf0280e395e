/*
 * Construction and the two generic entry points.
 */
#include "DeviceManagerCore.h"

#include <vesksdk.h>

#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::trace;

// Traced under the service object's name: the core is made where the service object is.
DeviceManagerCore::DeviceManagerCore() {
    trace("VeskDeviceManager", VESK_TRACE_LINE("VeskDeviceManager"));
    bi_init_product_config();  // once per service object; its result does not matter here
}

// Reserved: kept empty on purpose.
void DeviceManagerCore::hwInvoke(const std::string& /* command */) {
    trace("hwInvoke", VESK_TRACE_LINE("hwInvoke"));
}

// Notifications are not sent to clients, so there is nothing to register.
int32_t DeviceManagerCore::hwRegistCallback() {
    trace("hwRegistCallback", VESK_TRACE_LINE("hwRegistCallback"));
    return 0;
}

}  // namespace vesk::hardware::veskdevicemanager::core
