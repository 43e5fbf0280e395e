// The front end's results: every field of every parcelable from the board's records (values
// that only come through if each field is carried to its own place, with the same bits for the
// HIDL interface's unsigned types), the shapes of several results, the two generic entry points
// and dumpsys.
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

#include "AdapterTest.h"
#include "BoardRecordBytes.h"
#include "CountingReceiver.h"

namespace vesk::test {
namespace {

using namespace ::aidl::vesk::hardware::veskdevicemanager;
using ::ndk::ScopedAStatus;

std::vector<uint8_t> bytesOf(const std::string& text) {
    return std::vector<uint8_t>(text.begin(), text.end());
}

TEST_F(AdapterTest, ProductInfoCarriesEveryField) {
    // The record's slots (vesksdk_records.h) in the order of ProductInfo's texts.
    const size_t textOffsets[] = {0,    64,   96,   128,  256,  320,  384,  448,  480,  512, 544,
                                  1600, 1632, 1664, 1696, 1728, 1760, 1792, 1856, 1952, 1984};
    std::string record(2048, '\0');
    for (size_t i = 0; i < std::size(textOffsets); ++i) {
        putText(record, textOffsets[i], "text" + std::to_string(i + 1));
    }
    putText(record, 1568, "1");     // has_4g: flag1
    putText(record, 1824, "0");     // has_wifi: flag2
    putText(record, 1920, "2");     // has_ops: flag3
    putText(record, 2016, "true");  // use_dhcp
    script({{"bi_info_get_product_info", {{"return", 0}, {"out", hexOf(record)}}}});
    ProductInfo info;
    ASSERT_TRUE(service->getProductInfo(&info).isOk());
    const std::string* texts[] = {
            &info.text01, &info.modelId, &info.text03, &info.text04, &info.text05, &info.text06,
            &info.text07, &info.text08,  &info.text09, &info.text10, &info.text11, &info.text12,
            &info.text13, &info.text14,  &info.text15, &info.text16, &info.text17, &info.text18,
            &info.text19, &info.text20,  &info.text21};
    for (size_t i = 0; i < std::size(texts); ++i) {
        EXPECT_EQ("text" + std::to_string(i + 1), *texts[i]) << i;
    }
    EXPECT_TRUE(info.flag1);
    EXPECT_FALSE(info.flag2);
    EXPECT_TRUE(info.flag3);
    EXPECT_TRUE(info.useDHCP);
}

TEST_F(AdapterTest, WatchDogCfgCarriesEveryFieldWithItsBits) {
    std::string record(72, '\0');
    putText(record, 0, "/dev/watchdog7");
    record.replace(64, 4, le32(4294967295u));
    record.replace(68, 4, le32(2147483648u));
    script({{"bi_watchdog_parse", {{"return", 0}, {"out", hexOf(record)}}}});
    WatchDogCfg cfg;
    ASSERT_TRUE(service->getWatchDogCfg(&cfg).isOk());
    EXPECT_EQ("/dev/watchdog7", cfg.wdtDevice);
    EXPECT_EQ(-1, cfg.wdt_timeout);
    EXPECT_EQ(INT32_MIN, cfg.wdt_interval);
}

TEST_F(AdapterTest, ProcessInfoCarriesEveryFieldWithItsBits) {
    script({{"bi_get_process_info_by_name",
             {{"return", 1},
              {"out",
               {{"name1", "surfaceflinger"},
                {"name2", "/system/bin/surfaceflinger"},
                {"name3", "S"},
                {"block", "00ff0102030405060708090a0b0c0d80"},
                {"value64", 18446744073709551615u},
                {"valueReal", 2.75},
                {"value32", 4294967294u}}}}}});
    ProcessInfo info;
    ASSERT_TRUE(service->getProcessInfo("surfaceflinger", &info).isOk());
    EXPECT_EQ("surfaceflinger", info.name1);
    EXPECT_EQ("/system/bin/surfaceflinger", info.name2);
    EXPECT_EQ("S", info.name3);
    EXPECT_EQ((std::vector<uint8_t>{0x00, 0xff, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 0x80}),
              info.block);
    EXPECT_EQ(-1, info.value64);
    EXPECT_EQ(2.75, info.valueReal);
    EXPECT_EQ(-2, info.value32);
}

TEST_F(AdapterTest, AProcessTheBoardDoesNotKnowHasSixteenZeroBytes) {
    script({{"bi_get_process_info_by_name", {{"return", 0}}}});
    ProcessInfo info;
    ASSERT_TRUE(service->getProcessInfo("nothing", &info).isOk());
    EXPECT_EQ(std::vector<uint8_t>(16, 0), info.block);
    EXPECT_EQ("", info.name1);
}

TEST_F(AdapterTest, UsbListCarriesEachDeviceWithItsBits) {
    std::string record(1028, '\0');
    record.replace(0, 4, le32(2));
    record.replace(4, 4, le32(4294967295u));  // vid[0]
    record.replace(8, 4, le32(0x1d6b));       // vid[1]
    record.replace(516, 4, le32(0x0002));     // pid[0]
    record.replace(520, 4, le32(2147483648u));
    script({{"bi_info_get_usb_list", {{"return", 0}, {"out", hexOf(record)}}}});
    std::vector<UsbList> list;
    ASSERT_TRUE(service->getUsbList(&list).isOk());
    ASSERT_EQ(2u, list.size());
    EXPECT_EQ(-1, list[0].vid);
    EXPECT_EQ(2, list[0].pid);
    EXPECT_EQ(0x1d6b, list[1].vid);
    EXPECT_EQ(INT32_MIN, list[1].pid);
}

TEST_F(AdapterTest, CpuStatusCarriesEveryField) {
    std::string record;
    for (float value : {1.5f, 2.25f, 3.125f, 90.5f, 0.75f, 0.5f, 0.25f}) {
        record += floatBytes(value);
    }
    record += le32(4294967295u);
    script({{"bi_info_get_cpu_state", {{"return", 0}, {"out", hexOf(record)}}}});
    CpuStatus status;
    ASSERT_TRUE(service->getCpuStatus(&status).isOk());
    EXPECT_EQ(1.5f, status.usr);
    EXPECT_EQ(2.25f, status.nic);
    EXPECT_EQ(3.125f, status.sys);
    EXPECT_EQ(90.5f, status.idle);
    EXPECT_EQ(0.75f, status.iowait);
    EXPECT_EQ(0.5f, status.irq);
    EXPECT_EQ(0.25f, status.softirq);
    EXPECT_EQ(-1, status.temperature);
}

TEST_F(AdapterTest, LogConfigureResultCarriesTheStatusAndEveryField) {
    std::string record(216, '\0');
    putText(record, 0, "D");
    putText(record, 8, "/data/vesklog");
    putText(record, 136, "ring");
    putText(record, 200, "64M");
    putText(record, 208, "4M");
    script({{"bi_vesk_logd_get_configure", {{"return", 3}, {"out", hexOf(record)}}}});
    LogConfigureResult result;
    ASSERT_TRUE(service->getVeskLogConfigure(&result).isOk());
    EXPECT_EQ(3, result.ret);
    EXPECT_EQ("D", result.info.level);
    EXPECT_EQ("/data/vesklog", result.info.base);
    EXPECT_EQ("ring", result.info.mode);
    EXPECT_EQ("64M", result.info.total_size);
    EXPECT_EQ("4M", result.info.once_size);
}

TEST_F(AdapterTest, ALogConfigurationTheBoardFailsToReadIsStatusZeroAndEmptyTexts) {
    std::string record(216, '\0');
    putText(record, 0, "D");
    script({{"bi_vesk_logd_get_configure", {{"return", 0}, {"out", hexOf(record)}}}});
    LogConfigureResult result;
    result.ret = 9;
    ASSERT_TRUE(service->getVeskLogConfigure(&result).isOk());
    EXPECT_EQ(0, result.ret);
    EXPECT_EQ("", result.info.level);
}

TEST_F(AdapterTest, ALogConfigurationReachesTheBoardFieldByField) {
    VeskLogInfo info;
    info.level = "I";
    info.base = "/data/log";
    info.mode = "file";
    info.total_size = "32M";
    info.once_size = "1M";
    int32_t ret = 0;
    ASSERT_TRUE(service->setVeskLogConfigure(info, &ret).isOk());
    std::vector<json> calls = callsOf("bi_vesk_logd_set_configure");
    ASSERT_EQ(1u, calls.size());
    // The record, 216 bytes, as the board reads it.
    std::string record(216, '\0');
    putText(record, 0, "I");
    putText(record, 8, "/data/log");
    putText(record, 136, "file");
    putText(record, 200, "32M");
    putText(record, 208, "1M");
    EXPECT_EQ(json::array({json(std::vector<uint8_t>(record.begin(), record.end()))}),
              calls[0]["args"]);
}

TEST_F(AdapterTest, AResolutionCarriesEveryFieldWithItsBits) {
    std::string record = le32(4294967295u) + le32(1080) + le32(2147483648u) + le32(-3);
    script({{"bi_resolution_get_prefferred_timing_by_edid",
             {{"return", 0}, {"out", hexOf(record)}}}});
    VeskEffeResolution resolution;
    ASSERT_TRUE(service->getResolutionByEdid(std::vector<uint8_t>(256, 1), &resolution).isOk());
    EXPECT_EQ(-1, resolution.width);
    EXPECT_EQ(1080, resolution.height);
    EXPECT_EQ(INT32_MIN, resolution.fps);
    EXPECT_EQ(-3, resolution.status);
}

TEST_F(AdapterTest, TheResolutionListCarriesEachEntry) {
    std::string records = le32(3840) + le32(2160) + le32(30) + le32(0) + le32(4294967295u) +
                          le32(720) + le32(50) + le32(0);
    script({{"bi_resolution_get_parameters_list", {{"return", 2}, {"out", hexOf(records)}}}});
    std::vector<VeskEffeResolution> list;
    ASSERT_TRUE(service->getResolutionParametersList(&list).isOk());
    ASSERT_EQ(2u, list.size());
    EXPECT_EQ((std::vector<int32_t>{3840, 2160, 30, 1}),
              (std::vector<int32_t>{list[0].width, list[0].height, list[0].fps, list[0].status}));
    EXPECT_EQ((std::vector<int32_t>{-1, 720, 50, 1}),
              (std::vector<int32_t>{list[1].width, list[1].height, list[1].fps, list[1].status}));
}

// The HIDL facade ends its process here (its vector's size check); this front end answers the
// board's failure as an empty list.
TEST_F(AdapterTest, ANegativeResolutionCountIsAnEmptyList) {
    script({{"bi_resolution_get_parameters_list", {{"return", -5}}}});
    std::vector<VeskEffeResolution> list{VeskEffeResolution{}};
    ScopedAStatus status = service->getResolutionParametersList(&list);
    ASSERT_TRUE(status.isOk()) << status.getDescription();
    EXPECT_TRUE(list.empty());
}

TEST_F(AdapterTest, AReadResultCarriesTheBytesAndTheBoardsCount) {
    script({{"bi_serial_485_blocking_read", {{"return", 3}, {"out", hexOf("abc")}}}});
    ReadResult result;
    ASSERT_TRUE(service->readBlockingSerialPort485(8, 100, &result).isOk());
    EXPECT_EQ(bytesOf("abc"), result.data);
    EXPECT_EQ(3, result.bytes_read);
}

TEST_F(AdapterTest, AFailedReadIsItsNegativeCountBesideNoData) {
    script({{"bi_serial_hdmi_nonblocking_read", {{"return", -11}}}});
    ReadResult result;
    ASSERT_TRUE(service->readNonBlockingSerialPortHDMI(8, &result).isOk());
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(-11, result.bytes_read);
}

TEST_F(AdapterTest, ATransferResultCarriesTheStatusAndTheBytes) {
    script({{"bi_fpga_spi_write_read", {{"return", 2}, {"out", "e1e2e3"}}}});
    TransferResult result;
    ASSERT_TRUE(service->wReadSpiFpga({1, 2, 3}, &result).isOk());
    EXPECT_EQ(2, result.ret);
    EXPECT_EQ((std::vector<uint8_t>{0xe1, 0xe2}), result.data);

    script({{"bi_fpga_spi_read", {{"return", -71}}}});
    ASSERT_TRUE(service->readSpiFpga(4, &result).isOk());
    EXPECT_EQ(-71, result.ret);
    EXPECT_EQ(std::vector<uint8_t>(4, 0), result.data);
}

TEST_F(AdapterTest, RtcTimesAreIntsOfTheSameBits) {
    std::string words = le32(2025) + le32(4294967295u) + le32(2147483648u);
    words.resize(1024, '\0');
    script({{"bi_rtc_get_boot_time", {{"return", 0}, {"out", hexOf(words)}}}});
    std::vector<int32_t> time;
    ASSERT_TRUE(service->getRtcBootTime(&time).isOk());
    ASSERT_EQ(256u, time.size());
    EXPECT_EQ(2025, time[0]);
    EXPECT_EQ(-1, time[1]);
    EXPECT_EQ(INT32_MIN, time[2]);
    EXPECT_EQ(0, time[3]);
}

TEST_F(AdapterTest, AFloatResultIsTheBoardsFloat) {
    script({{"bi_adc_get_board_voltage", {{"return", 11.875}}}});
    float volts = 0;
    ASSERT_TRUE(service->getBoardVoltage(&volts).isOk());
    EXPECT_EQ(11.875f, volts);
}

TEST_F(AdapterTest, TheVersionTextIsTheCoresText) {
    std::string version;
    ASSERT_TRUE(service->getVndkVersion(&version).isOk());
    EXPECT_EQ("getVndkVersion:1.0", version);
}

TEST_F(AdapterTest, HwInvokeAnswersNullForAnyCommand) {
    for (const char* command : {"", "status", "reboot"}) {
        std::optional<std::string> answer = "unset";
        ASSERT_TRUE(service->hwInvoke(command, &answer).isOk());
        EXPECT_EQ(std::nullopt, answer) << command;
    }
    EXPECT_THAT(vesk::sim::journal(), ::testing::IsEmpty());
}

// A registration answers 0, for a null callback too, and the front end keeps no reference: the
// callback's binder has as many strong references after the call as before.
TEST_F(AdapterTest, HwRegistCallbackAnswersZeroAndKeepsNothing) {
    int32_t ret = -1;
    ASSERT_TRUE(service->hwRegistCallback(nullptr, &ret).isOk());
    EXPECT_EQ(0, ret);

    auto receiver = ndk::SharedRefBase::make<CountingReceiver>();
    ndk::SpAIBinder binder = receiver->asBinder();
    int32_t before = AIBinder_debugGetRefCount(binder.get());
    long owners = receiver.use_count();
    ret = -1;
    ASSERT_TRUE(service->hwRegistCallback(receiver, &ret).isOk());
    EXPECT_EQ(0, ret);
    EXPECT_EQ(before, AIBinder_debugGetRefCount(binder.get()));
    EXPECT_EQ(owners, receiver.use_count());
    EXPECT_EQ(0, receiver->notifications);
}

// dumpsys's text: the sections asked for, or all of them, as `lshal debug` prints them.
class DumpTest : public AdapterTest {
  protected:
    std::string dumped(const std::vector<const char*>& args) {
        int fd = memfd_create("dump-test", MFD_CLOEXEC);
        EXPECT_EQ(STATUS_OK, AIBinder_dump(service->asBinder().get(), fd,
                                           const_cast<const char**>(args.data()),
                                           static_cast<uint32_t>(args.size())));
        std::string text = contentOf(fd);
        close(fd);
        return text;
    }
    static std::vector<std::string> headers(const std::string& text) {
        std::vector<std::string> found;
        size_t start = 0;
        while (start < text.size()) {
            size_t end = text.find('\n', start);
            if (end == std::string::npos) end = text.size();
            if (text[start] == '[') found.push_back(text.substr(start, end - start));
            start = end + 1;
        }
        return found;
    }
};

TEST_F(DumpTest, EverySectionWithoutArguments) {
    std::string text = dumped({});
    EXPECT_EQ((std::vector<std::string>{"[product]", "[mode]", "[env]", "[log]"}), headers(text))
            << text;
    EXPECT_NE(std::string::npos, text.find("device: /dev/block/env\n")) << text;
}

// In the order of the sections, whatever the order asked in.
TEST_F(DumpTest, TheSectionsAskedFor) {
    EXPECT_EQ((std::vector<std::string>{"[product]", "[log]"}),
              headers(dumped({"log", "product"})));
    std::string record(2048, '\0');
    putText(record, 64, "8470");
    putText(record, 256, "SN-42");
    script({{"bi_info_get_product_info", {{"return", 0}, {"out", hexOf(record)}}}});
    std::string product = dumped({"product"});
    EXPECT_NE(std::string::npos, product.find("SN-42")) << product;
}

}  // namespace
}  // namespace vesk::test
