/*
 * A service fixture that runs one call at each of the levels "D", "I" and "E" and checks the
 * service's lines after each: every line at "D"; at "I" only lines of information priority and
 * above; at "E" only error lines.
 */
#pragma once

#include <functional>

#include "ServiceTest.h"

namespace vesk::test {

class EachLevelTest : public ServiceTest {
  protected:
    // `call` runs three times, once per level; `atD` is what "D" writes, in order.
    void expectLinesAtEachLevel(const std::function<void()>& call, const LogLines& atD) {
        const struct {
            const char* level;
            int lowest;
        } kLevels[] = {{"D", ANDROID_LOG_DEBUG}, {"I", ANDROID_LOG_INFO}, {"E", ANDROID_LOG_ERROR}};
        for (const auto& level : kLevels) {
            SCOPED_TRACE(std::string("level ") + level.level);
            setLevel(level.level);
            vesk::host::clearCapturedLog();
            call();
            LogLines expected;
            for (const auto& line : atD) {
                if (line.priority >= level.lowest) expected.push_back(line);
            }
            EXPECT_EQ(expected, capturedLogWithTag(kServiceTag));
        }
    }
};

}  // namespace vesk::test
