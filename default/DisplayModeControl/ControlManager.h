/*
 * The output-mode subsystem's manager. It has no behaviour beyond announcing itself; nothing in
 * the service constructs one today.
 */
#pragma once

namespace vesk::hardware::veskdevicemanager::implementation {

class ControlManager {
  public:
    ControlManager();
    ~ControlManager();
};

}  // namespace vesk::hardware::veskdevicemanager::implementation
