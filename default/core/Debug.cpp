/*
 * The service's state, as
 * `lshal debug vesk.hardware.veskdevicemanager@1.0::IVeskDeviceManager/default` prints it (the
 * HIDL facade's IBase::debug hands its descriptor here). Plain text, one "[section]" header per
 * section and one "key: value" line per fact:
 *
 *   [product]  the board's product record, field by field (read afresh, not from the cache)
 *   [mode]     hdmimode and custom_mode as stored in the boot loader's environment, the custom
 *              mode decoded field by field
 *   [env]      the environment's device and, for copy A and copy B, the stored and the computed
 *              CRC and whether they agree
 *   [log]      the log-level properties
 *
 * Options name the sections to print (all of them when none is given); an unknown option gets
 * one usage line and nothing else. Nothing here changes state: no property is set, no board
 * function that writes is called, the environment is read without its write lock, and no trace
 * line is written.
 */
#include <cutils/properties.h>
#include <fcntl.h>
#include <unistd.h>
#include <vesksdk.h>
#include <vesksdk_records.h>
#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "BoardText.h"
#include "CustomMode.h"
#include "DeviceManagerCore.h"
#include "Ubootenv.h"
#include "VeskLog.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::CustomModeField;
using implementation::kCustomModeFields;
using implementation::recordText;

namespace {

constexpr const char* kSections[] = {"product", "mode", "env", "log"};

struct RecordText {
    const char* name;
    size_t offset;
};

// The text fields of the product record, by their record names.
constexpr RecordText kProductFields[] = {
        {"vendor", offsetof(vesk_product_record, vendor)},
        {"model_id", offsetof(vesk_product_record, model_id)},
        {"hardware_version", offsetof(vesk_product_record, hardware_version)},
        {"product_name", offsetof(vesk_product_record, product_name)},
        {"serial_number", offsetof(vesk_product_record, serial_number)},
        {"manufacture_date", offsetof(vesk_product_record, manufacture_date)},
        {"firmware_version", offsetof(vesk_product_record, firmware_version)},
        {"mac", offsetof(vesk_product_record, mac)},
        {"ip_address", offsetof(vesk_product_record, ip_address)},
        {"netmask", offsetof(vesk_product_record, netmask)},
        {"gateway", offsetof(vesk_product_record, gateway)},
        {"dns1", offsetof(vesk_product_record, dns1)},
        {"dns2", offsetof(vesk_product_record, dns2)},
        {"wifi_mac", offsetof(vesk_product_record, wifi_mac)},
        {"bt_mac", offsetof(vesk_product_record, bt_mac)},
        {"panel", offsetof(vesk_product_record, panel)},
        {"customer", offsetof(vesk_product_record, customer)},
        {"android_version", offsetof(vesk_product_record, android_version)},
        {"region", offsetof(vesk_product_record, region)},
        {"language", offsetof(vesk_product_record, language)},
        {"has_4g", offsetof(vesk_product_record, has_4g)},
        {"has_wifi", offsetof(vesk_product_record, has_wifi)},
        {"has_ops", offsetof(vesk_product_record, has_ops)},
        {"use_dhcp", offsetof(vesk_product_record, use_dhcp)},
        {"description", offsetof(vesk_product_record, description)},
};

class Printer {
  public:
    explicit Printer(int fd) : mFd(fd) {}
    void line(const std::string& text) {
        std::string whole = text + "\n";
        size_t done = 0;
        while (done < whole.size()) {
            ssize_t n = write(mFd, whole.data() + done, whole.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return;  // the reader went away: nothing more to say
            done += static_cast<size_t>(n);
        }
    }
    void fact(const std::string& key, const std::string& value) { line(key + ": " + value); }

  private:
    int mFd;
};

std::string hex32(uint32_t value) {
    char text[11];
    snprintf(text, sizeof(text), "0x%08x", value);
    return text;
}

void printProduct(Printer& out) {
    out.line("[product]");
    vesk_product_record record;
    memset(&record, 0, sizeof(record));
    int result = bi_info_get_product_info(&record);
    if (result < 0) {
        out.fact("error",
                 "the board did not give its product record (" + std::to_string(result) + ")");
        return;
    }
    for (const RecordText& field : kProductFields) {
        out.fact(field.name, recordText(&record, sizeof(record), field.offset));
    }
}

void printMode(Printer& out, Ubootenv& env) {
    out.line("[mode]");
    const char* hdmimode = env.getValue("ubootenv.var.hdmimode");
    const char* customMode = env.getValue("ubootenv.var.custom_mode");
    out.fact("hdmimode", hdmimode != nullptr ? hdmimode : "(not set)");
    out.fact("custom_mode", customMode != nullptr ? customMode : "(not set)");
    if (customMode == nullptr || strcmp(customMode, "0") == 0) return;
    std::vector<std::string> values;
    const char* start = customMode;
    for (const char* c = customMode;; ++c) {
        if (*c == ',' || *c == '\0') {
            values.emplace_back(start, c);
            start = c + 1;
        }
        if (*c == '\0') break;
    }
    if (values.size() != std::size(kCustomModeFields)) {
        out.fact("custom_mode.error", std::to_string(values.size()) + " fields, not " +
                                              std::to_string(std::size(kCustomModeFields)));
        return;
    }
    for (size_t i = 0; i < values.size(); ++i) {
        const CustomModeField& field = kCustomModeFields[i];
        std::string value = values[i];
        if (field.unit[0] != '\0') value += std::string(" ") + field.unit;
        out.fact("custom_mode." + std::to_string(i + 1) + " " + field.name, value);
    }
}

// Stored and computed CRC of one copy, read without the write lock: a save in progress may
// show as a mismatch.
void printCopy(Printer& out, int fd, const char* name, off_t offset, const Ubootenv& env) {
    std::vector<uint8_t> copy(env.partitionSize);
    ssize_t count = pread(fd, copy.data(), copy.size(), offset);
    if (count != static_cast<ssize_t>(copy.size()) || env.dataSize + 4 > copy.size()) {
        out.fact(name, "unreadable (" + std::to_string(count) + " of " +
                               std::to_string(copy.size()) + " bytes)");
        return;
    }
    uint32_t stored;
    memcpy(&stored, copy.data(), sizeof(stored));
    uint32_t computed = static_cast<uint32_t>(crc32(0, copy.data() + 4, env.dataSize));
    out.fact(name, "stored crc " + hex32(stored) + ", computed crc " + hex32(computed) +
                           (stored == computed ? ", valid" : ", invalid"));
}

void printEnv(Printer& out, const Ubootenv& env) {
    out.line("[env]");
    if (env.devicePath[0] == '\0') {
        out.fact("device", "(none found)");
        return;
    }
    out.fact("device", env.devicePath);
    out.fact("copy size", std::to_string(env.partitionSize));
    // Without waiting: a device that is no partition (a FIFO) then shows as unreadable.
    int fd = vesk::platform::openDevice(env.devicePath, O_RDONLY | O_NONBLOCK, 0);
    if (fd < 0) {
        out.fact("error", std::string("cannot open: ") + strerror(errno));
        return;
    }
    printCopy(out, fd, "copy A", 0, env);
    printCopy(out, fd, "copy B", kEnvCopyBOffset, env);
    close(fd);
}

void printLog(Printer& out) {
    out.line("[log]");
    for (const char* name : {vesk::log::kLevelProperty, kUbootenvLevelProperty}) {
        char value[PROPERTY_VALUE_MAX];
        memset(value, 0, sizeof(value));
        property_get(name, value, "");
        out.fact(name, value[0] != '\0' ? value : "(not set)");
    }
}

bool isSection(const std::string& word) {
    for (const char* section : kSections) {
        if (word == section) return true;
    }
    return false;
}

}  // namespace

void DeviceManagerCore::debug(int fd, const std::vector<std::string>& options) {
    if (fd < 0) return;
    Printer out(fd);
    for (const std::string& option : options) {
        if (!isSection(option)) {
            out.line(
                    "usage: lshal debug vesk.hardware.veskdevicemanager@1.0::"
                    "IVeskDeviceManager/default [product] [mode] [env] [log]");
            return;
        }
    }
    auto asked = [&](const char* section) {
        if (options.empty()) return true;
        for (const std::string& word : options) {
            if (word == section) return true;
        }
        return false;
    };
    if (asked("product")) printProduct(out);
    if (asked("mode") || asked("env")) {
        Ubootenv env;
        if (asked("mode")) printMode(out, env);
        if (asked("env")) printEnv(out, env);
    }
    if (asked("log")) printLog(out);
}

}  // namespace vesk::hardware::veskdevicemanager::core
