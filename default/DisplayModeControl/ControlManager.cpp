#include "ControlManager.h"

#include "VeskLog.h"

namespace vesk::hardware::veskdevicemanager::implementation {

ControlManager::ControlManager() {
    vesk::log::debug("vesk_system_hidl_controlManager", "ControlManager construct");
}

ControlManager::~ControlManager() = default;

}  // namespace vesk::hardware::veskdevicemanager::implementation
