/*
 * Fixture of the output-mode tests: a fresh device root with its factory environment, the log
 * captured, and the mode tool's command lines recorded instead of run.
 */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "DisplayModeControl.h"
#include "DisplayModeTestSupport.h"
#include "vesk/host/Seams.h"

namespace vesk::test {

using vesk::hardware::veskdevicemanager::implementation::allow_list_t;
using vesk::hardware::veskdevicemanager::implementation::DisplayModeControl;
using vesk::hardware::veskdevicemanager::implementation::timing_t;

// Every field of a timing record, doubles to the last bit, for comparing whole records.
std::string describe(const timing_t& t);

class DisplayModeTest : public RootTest {
  protected:
    DisplayModeTest() {
        vesk::host::setShellRecorder([this](const std::string& line) {
            commands.push_back(line);
            if (onCommand) onCommand();
            return commandStatus;
        });
    }
    ~DisplayModeTest() override { vesk::host::setShellRecorder(nullptr); }

    void setLevel(const std::string& level) { setProperty(kLevelProperty, level); }
    // Stores `value` for `name` through the environment store, then forgets the log it made.
    void storeEnv(const std::string& name, const std::string& value);

    std::vector<std::string> commands;
    std::function<void()> onCommand;  // runs inside the recorded command
    int commandStatus = 0;
};

}  // namespace vesk::test
