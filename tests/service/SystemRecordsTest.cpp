// System records: watchdog, processes, USB list, CPU, interface version, RTC times, log daemon.

#include "ServiceTest.h"

namespace vesk::test {
namespace {

using namespace vesk::hardware::veskdevicemanager::V1_0;

using SystemRecordsTest = ServiceTest;

TEST_F(SystemRecordsTest, WatchDogConfigCopiesTheRecordAndLogsOnlyItsOwnLine) {
    setLevel("D");
    std::string record(72, '\0');
    putText(record, 0, "/dev/watchdog1");
    record.replace(64, 4, le32(30));
    record.replace(68, 4, le32(4000000000u));
    script({{"bi_watchdog_parse", {{"return", 0}, {"out", hexOf(record)}}}});
    WatchDogCfg cfg;
    service->getWatchDogCfg([&](const WatchDogCfg& c) { cfg = c; });
    EXPECT_EQ("/dev/watchdog1", std::string(cfg.wdtDevice));
    EXPECT_EQ(30u, cfg.wdt_timeout);
    EXPECT_EQ(4000000000u, cfg.wdt_interval);
    EXPECT_EQ(LogLines{debugLine("getWatchDogCfg:wdtDevice = /dev/watchdog1, wdt_timeout = 30, "
                                 "wdt_interval = 4000000000\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, WatchDogParseFailureAnswersWhatTheBoardLeft) {
    script({{"bi_watchdog_parse", {{"return", -1}}}});
    WatchDogCfg cfg;
    cfg.wdt_timeout = 99;
    service->getWatchDogCfg([&](const WatchDogCfg& c) { cfg = c; });
    EXPECT_EQ("", std::string(cfg.wdtDevice));
    EXPECT_EQ(0u, cfg.wdt_timeout);
    EXPECT_EQ(0u, cfg.wdt_interval);
}

TEST_F(SystemRecordsTest, ProcessInfoCopiesTheBoardsRecordOnResultOne) {
    setLevel("D");
    script({{"bi_get_process_info_by_name",
             {{"return", 1},
              {"out",
               {{"name1", "surfaceflinger"},
                {"name2", "/system/bin/surfaceflinger"},
                {"name3", "S"},
                {"block", "000102030405060708090a0b0c0d0e0f"},
                {"value64", 1234567890123ull},
                {"valueReal", 2.5},
                {"value32", 4242}}}}}});
    ProcessInfo info;
    service->getProcessInfo("surfaceflinger", [&](const ProcessInfo& p) { info = p; });
    EXPECT_EQ("surfaceflinger", std::string(info.name1));
    EXPECT_EQ("/system/bin/surfaceflinger", std::string(info.name2));
    EXPECT_EQ("S", std::string(info.name3));
    for (int i = 0; i < 16; ++i) EXPECT_EQ(i, info.block[i]);
    EXPECT_EQ(1234567890123ull, info.value64);
    EXPECT_EQ(2.5, info.valueReal);
    EXPECT_EQ(4242u, info.value32);
    EXPECT_EQ(LogLines{debugLine(traced("getProcessInfo") + "\n")}, capturedLogWithTag(kServiceTag));
    EXPECT_EQ(json::array({"surfaceflinger", nullptr}),
              callsOf("bi_get_process_info_by_name")[0]["args"]);
}

TEST_F(SystemRecordsTest, ProcessInfoWithResultTwoIsAFailure) {
    for (int ret : {2, 0, -1}) {
        script({{"bi_get_process_info_by_name",
                 {{"return", ret}, {"out", {{"name1", "x"}, {"value32", 7}}}}}});
        vesk::host::clearCapturedLog();
        ProcessInfo info;
        service->getProcessInfo("x", [&](const ProcessInfo& p) { info = p; });
        EXPECT_TRUE(info == ProcessInfo{}) << ret;
        EXPECT_EQ(LogLines{errorLine("getProcessInfo not get processinfo\n")},
                  capturedLogWithTag(kServiceTag))
                << ret;
    }
}

TEST_F(SystemRecordsTest, UsbListWithCountZeroIsEmptyWithoutDeviceLines) {
    setLevel("D");
    script({{"bi_info_get_usb_list", {{"return", 0}}}});
    hidl_vec<UsbList> list = {UsbList{1, 1}};
    service->getUsbList([&](const hidl_vec<UsbList>& l) { list = l; });
    EXPECT_EQ(0u, list.size());
    EXPECT_EQ(LogLines{debugLine(traced("getUsbList") + "\n")}, capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, UsbListConvertsEachDeviceAndLogsIt) {
    setLevel("D");
    std::string record = le32(2);
    record.resize(1028, '\0');
    record.replace(4, 4, le32(0x1d6b));
    record.replace(8, 4, le32(0x0bda));
    record.replace(4 + 512, 4, le32(0x0002));
    record.replace(8 + 512, 4, le32(0x8153));
    script({{"bi_info_get_usb_list", {{"return", -4}, {"out", hexOf(record)}}}});
    hidl_vec<UsbList> list;
    service->getUsbList([&](const hidl_vec<UsbList>& l) { list = l; });
    ASSERT_EQ(2u, list.size());
    EXPECT_EQ(0x1d6bu, list[0].vid);
    EXPECT_EQ(0x0002u, list[0].pid);
    EXPECT_EQ(0x0bdau, list[1].vid);
    EXPECT_EQ(0x8153u, list[1].pid);
    EXPECT_EQ((LogLines{debugLine(traced("getUsbList") + "\n"),
                        infoLine("Device 0: VID = 1D6B, PID = 2, ret = -4\n"),
                        infoLine("Device 1: VID = BDA, PID = 8153, ret = -4\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, UsbListCountBeyondTheRecordIsClampedTo128) {
    std::string record = le32(500);
    record.resize(1028, '\0');
    script({{"bi_info_get_usb_list", {{"return", 0}, {"out", hexOf(record)}}}});
    size_t size = 0;
    service->getUsbList([&](const hidl_vec<UsbList>& l) { size = l.size(); });
    EXPECT_EQ(128u, size);
}

TEST_F(SystemRecordsTest, CpuStatusCopiesValuesAndLogsThem) {
    setLevel("I");
    std::string record = floatBytes(12.5f) + floatBytes(0.25f) + floatBytes(3.0f) +
                         floatBytes(80.125f) + floatBytes(1.5f) + floatBytes(0.5f) +
                         floatBytes(2.0f) + le32(47);
    script({{"bi_info_get_cpu_state", {{"return", 0}, {"out", hexOf(record)}}}});
    CpuStatus status;
    service->getCpuStatus([&](const CpuStatus& s) { status = s; });
    EXPECT_EQ((CpuStatus{12.5f, 0.25f, 3.0f, 80.125f, 1.5f, 0.5f, 2.0f, 47}), status);
    EXPECT_EQ(LogLines{infoLine("getCpuStatus:USR: 12.500000, NIC: 0.250000, SYS: 3.000000, "
                                "IDLE: 80.125000, I/O Wait: 1.500000, IRQ: 0.500000, SoftIRQ: "
                                "2.000000, Temperature: 47\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, CpuStatusFailureAnswersZeros) {
    std::string record = floatBytes(12.5f) + std::string(28, '\0');
    script({{"bi_info_get_cpu_state", {{"return", 1}, {"out", hexOf(record)}}}});
    CpuStatus status{1, 1, 1, 1, 1, 1, 1, 1};
    service->getCpuStatus([&](const CpuStatus& s) { status = s; });
    EXPECT_TRUE(status == CpuStatus{});
    EXPECT_EQ(LogLines{errorLine("getCpuStatus: get cpu info failed\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, VndkVersionIsAlwaysTheMethodsNameAndOne) {
    setLevel("D");
    for (int i = 0; i < 3; ++i) {
        std::string version;
        service->getVndkVersion([&](const hidl_string& v) { version = v; });
        EXPECT_EQ("getVndkVersion:1.0", version);
    }
    EXPECT_EQ(LogLines(3, debugLine(traced("getVndkVersion") + "\n")),
              capturedLogWithTag(kServiceTag));
    EXPECT_TRUE(calls().empty());
}

TEST_F(SystemRecordsTest, RtcBootTimeAnswers256WordsOnSuccess) {
    setLevel("D");
    script({{"bi_rtc_get_boot_time", {{"return", 6}, {"out", hexOf(le32(2026) + le32(11))}}}});
    hidl_vec<uint32_t> time;
    service->getRtcBootTime([&](const hidl_vec<uint32_t>& t) { time = t; });
    ASSERT_EQ(256u, time.size());
    EXPECT_EQ(2026u, time[0]);
    EXPECT_EQ(11u, time[1]);
    for (size_t i = 2; i < 256; ++i) EXPECT_EQ(0u, time[i]);
    EXPECT_EQ(LogLines{debugLine(traced("getRtcBootTime") + "\n")}, capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, RtcTimesAreEmptyOnANegativeResult) {
    script({{"bi_rtc_get_boot_time", {{"return", -1}}}, {"bi_rtc_get_wake_time", {{"return", -2}}}});
    hidl_vec<uint32_t> boot = {1}, wake = {1};
    service->getRtcBootTime([&](const hidl_vec<uint32_t>& t) { boot = t; });
    service->getRtcWakeTime([&](const hidl_vec<uint32_t>& t) { wake = t; });
    EXPECT_EQ(0u, boot.size());
    EXPECT_EQ(0u, wake.size());
    EXPECT_EQ((LogLines{errorLine("bi_rtc_get_boot_time failed"),
                        errorLine("bi_rtc_get_wake_time failed")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(SystemRecordsTest, RtcWakeTimeTracesItsOwnLine) {
    setLevel("D");
    service->getRtcWakeTime([](const hidl_vec<uint32_t>&) {});
    EXPECT_EQ(LogLines{debugLine(traced("getRtcWakeTime") + "\n")}, capturedLogWithTag(kServiceTag));
}

}  // namespace
}  // namespace vesk::test
