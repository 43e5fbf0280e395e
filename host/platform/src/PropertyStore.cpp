/*
 * property_get / property_set of <cutils/properties.h> over a shared, persistent store below
 * the device root.
 *
 * The store is one file mapped shared into every process that uses the root, laid out like
 * bionic's property area: a fixed open-addressing table of slots. A slot's name is written once,
 * before the slot is published. Its value has two buffers and a serial: bit 1 of the serial names
 * the buffer that holds the published value, and a writer fills the other one before it publishes
 * the new serial with one store. A writer killed at any instruction therefore leaves the last
 * complete value in place, and readers, who never lock and never make a system call, retry only
 * when a write completed while they copied (a bounded number of times). A value set by one
 * process is what the very next read in any other process sees. Writers serialise with a mutex
 * (threads) and flock (processes). A file that is not a store of this layout is started afresh,
 * and every slot is checked before it is trusted, so that a damaged file never crashes a reader.
 */
#include <android/log.h>
#include <cutils/properties.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "HostInternal.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/Properties.h"
#include "vesk/host/RootFiles.h"

namespace {

constexpr uint32_t kMagic = 0x56455350;  // "VESP"
constexpr uint32_t kVersion = 2;
constexpr uint32_t kSlotCount = 2048;
constexpr size_t kNameMax = 256;    // name bytes, terminator included
constexpr size_t kValueWords = 12;  // 96 bytes: PROPERTY_VALUE_MAX rounded up to whole words
static_assert(kValueWords * 8 >= PROPERTY_VALUE_MAX);

struct Slot {
    uint32_t serial;  // 0: free; else published, bit 1 naming the value buffer in use
    uint32_t nameLength;
    char name[kNameMax];
    uint64_t value[2][kValueWords];
};

struct Area {
    uint32_t magic;
    uint32_t version;
    uint32_t slotCount;
    uint32_t reserved;
    Slot slots[kSlotCount];
};

struct Store {
    uint64_t generation;
    std::string root;
    Area* area = nullptr;
    int fd = -1;
    Store* previous = nullptr;  // the store it replaced: kept, as a reader may still hold it
};

// Reads that saw a write complete this often in a row give up and report the property unset.
constexpr int kReadTries = 1000;

std::mutex gWriteMutex;
std::mutex gOpenMutex;
std::atomic<Store*> gStore{nullptr};
std::atomic<vesk::host::PropertyWriteHook> gWriteHook{nullptr};

void writeStep(int step) {
    if (vesk::host::PropertyWriteHook hook = gWriteHook.load(std::memory_order_relaxed)) hook(step);
}

uint32_t loadAcquire(const uint32_t* p) {
    return __atomic_load_n(p, __ATOMIC_ACQUIRE);
}

uint32_t hashName(const char* name, size_t length) {
    uint32_t hash = 2166136261u;  // FNV-1a
    for (size_t i = 0; i < length; ++i) {
        hash = (hash ^ static_cast<unsigned char>(name[i])) * 16777619u;
    }
    return hash;
}

// Once per root: a reader retries the store at each read and must not repeat itself.
std::atomic<uint64_t> gReportedGeneration{0};

// What is wrong with the store, as one line; kept for setProperty's caller.
thread_local std::string gStoreProblem;

// An error line of the log (once per root), and the problem for setProperty.
void reportStore(const std::string& root, const char* what) {
    gStoreProblem = "property store " + root + vesk::host::kPropertyStore + " " + what + ": " +
                    strerror(errno);
    uint64_t generation = vesk::host::rootGeneration();
    if (gReportedGeneration.exchange(generation) == generation) return;
    __android_log_print(ANDROID_LOG_ERROR, "veskplatform", "%s\n", gStoreProblem.c_str());
}

bool validHeader(const Area* area) {
    return area->magic == kMagic && area->version == kVersion && area->slotCount == kSlotCount;
}

bool allZero(const void* bytes, size_t size) {
    const auto* p = static_cast<const unsigned char*>(bytes);
    for (size_t i = 0; i < size; ++i) {
        if (p[i] != 0) return false;
    }
    return true;
}

Slot* findSlot(Area* area, const char* name, size_t length);
void publishSlot(Slot* slot, const char* name, size_t nameLength, const char* value, size_t length);

// Stores of the first layout (one value buffer per slot, version 1) are carried over, property by
// property, so that an existing root keeps its settings. The caller holds the file's lock.
bool migrateFirstLayout(Area* area) {
    struct FirstSlot {
        uint32_t serial;
        uint32_t nameLength;
        char name[kNameMax];
        char value[kValueWords * 8];
    };
    constexpr size_t kHeader = 16;
    static_assert(kHeader + kSlotCount * sizeof(FirstSlot) <= sizeof(Area));
    if (area->magic != kMagic || area->version != 1 || area->slotCount != kSlotCount) return false;
    std::vector<std::pair<std::string, std::string>> kept;
    const auto* bytes = reinterpret_cast<const unsigned char*>(area);
    for (uint32_t i = 0; i < kSlotCount; ++i) {
        FirstSlot slot;
        std::memcpy(&slot, bytes + kHeader + i * sizeof(FirstSlot), sizeof(slot));
        // A torn entry (odd serial: its writer died mid-value) is left behind.
        if (slot.serial == 0 || (slot.serial & 1u) != 0) continue;
        if (slot.nameLength == 0 || slot.nameLength >= kNameMax) continue;
        size_t valueLength = strnlen(slot.value, PROPERTY_VALUE_MAX);
        if (valueLength >= PROPERTY_VALUE_MAX) continue;
        kept.emplace_back(std::string(slot.name, slot.nameLength),
                          std::string(slot.value, valueLength));
    }
    std::memset(area, 0, sizeof(Area));
    area->version = kVersion;
    area->slotCount = kSlotCount;
    for (const auto& [name, value] : kept) {
        if (name.find('\0') != std::string::npos) continue;
        Slot* slot = findSlot(area, name.c_str(), name.size());
        if (slot != nullptr && slot->serial == 0) {
            publishSlot(slot, name.c_str(), name.size(), value.c_str(), value.size());
        }
    }
    __atomic_store_n(&area->magic, kMagic, __ATOMIC_RELEASE);
    return true;
}

// Maps the store of `root`; with `create`, the file is made when missing. A store that cannot be
// opened or mapped leaves `area` null: reads give the default and writes fail.
Store* openStore(uint64_t generation, const std::string& root, bool create) {
    auto* store = new Store{generation, root};
    if (root.empty()) return store;
    store->fd = vesk::host::openBelowRoot(root, vesk::host::kPropertyStore,
                                          O_RDWR | (create ? O_CREAT : 0), 0644);
    if (store->fd < 0) {
        if (errno != ENOENT || create) reportStore(root, "cannot be opened");
        return store;
    }
    struct stat st {};
    if (fstat(store->fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        errno = EINVAL;
        reportStore(root, "is not a regular file");
        return store;
    }
    // An empty file holds no property yet: a reader leaves it as it is and reads the defaults.
    if (!create && st.st_size == 0) return store;
    flock(store->fd, LOCK_EX);
    if (static_cast<size_t>(st.st_size) < sizeof(Area)) {
        // A short file (new, or cut off) is completed with free slots.
        if (ftruncate(store->fd, sizeof(Area)) != 0) {
            reportStore(root, "cannot be sized");
            flock(store->fd, LOCK_UN);
            return store;
        }
    }
    void* map = mmap(nullptr, sizeof(Area), PROT_READ | PROT_WRITE, MAP_SHARED, store->fd, 0);
    if (map != MAP_FAILED) {
        auto* area = static_cast<Area*>(map);
        if (!validHeader(area) && !migrateFirstLayout(area)) {
            if (!allZero(area, sizeof(Area))) {
                errno = EINVAL;
                reportStore(root, "has an unknown layout; started empty");
                memset(area, 0, sizeof(Area));
            }
            area->version = kVersion;
            area->slotCount = kSlotCount;
            __atomic_store_n(&area->magic, kMagic, __ATOMIC_RELEASE);
        }
        store->area = area;
    } else {
        reportStore(root, "cannot be mapped");
    }
    flock(store->fd, LOCK_UN);
    return store;
}

// The store of the current device root. The root is fixed for a process in practice; when a
// test changes it, the old mapping is kept (never unmapped) so that no reader is left dangling.
// Readers (`create` false) never create the root or the store: a process that only reads gives
// the defaults until a store exists.
Store* currentStore(bool create) {
    Store* store = gStore.load(std::memory_order_acquire);
    if (store != nullptr && store->generation == vesk::host::rootGeneration() &&
        store->area != nullptr) {
        return store;
    }
    std::lock_guard<std::mutex> lock(gOpenMutex);
    uint64_t generation = vesk::host::rootGeneration();
    store = gStore.load(std::memory_order_acquire);
    if (store != nullptr && store->generation == generation && store->area != nullptr) {
        return store;
    }
    std::string root = create ? vesk::host::deviceRoot() : vesk::host::existingDeviceRoot();
    Store* fresh = openStore(generation, root, create);
    if (fresh->area == nullptr) {
        if (fresh->fd >= 0) close(fresh->fd);
        delete fresh;
        return nullptr;
    }
    fresh->previous = store;
    gStore.store(fresh, std::memory_order_release);
    return fresh;
}

// The slot holding `name`, or the free slot where it would go (nullptr when the table is full).
Slot* findSlot(Area* area, const char* name, size_t length) {
    uint32_t index = hashName(name, length) % kSlotCount;
    for (uint32_t probe = 0; probe < kSlotCount; ++probe) {
        Slot* slot = &area->slots[(index + probe) % kSlotCount];
        if (loadAcquire(&slot->serial) == 0) return slot;
        if (slot->nameLength == length && std::memcmp(slot->name, name, length) == 0) return slot;
        // Any other slot, a damaged one included, is passed over.
    }
    return nullptr;
}

uint32_t bufferOf(uint32_t serial) {
    return (serial >> 1) & 1u;
}

// Copies the published value of `slot` into `out` (PROPERTY_VALUE_MAX bytes); its length, or -1
// when writes kept completing while it was copied.
int readValue(const Slot* slot, char* out) {
    uint64_t words[kValueWords];
    for (int tries = 0; tries < kReadTries; ++tries) {
        uint32_t before = loadAcquire(&slot->serial);
        const uint64_t* value = slot->value[bufferOf(before)];
        for (size_t i = 0; i < kValueWords; ++i) {
            words[i] = __atomic_load_n(&value[i], __ATOMIC_RELAXED);
        }
        __atomic_thread_fence(__ATOMIC_ACQUIRE);
        if (__atomic_load_n(&slot->serial, __ATOMIC_RELAXED) == before) {
            std::memcpy(out, words, PROPERTY_VALUE_MAX);
            out[PROPERTY_VALUE_MAX - 1] = '\0';
            return static_cast<int>(std::strlen(out));
        }
    }
    return -1;
}

// The serial after `serial`: bit 1 flipped, never 0 (free) whatever a damaged file held.
uint32_t nextSerial(uint32_t serial) {
    uint32_t next = (serial & ~1u) + 2;
    return next == 0 ? 4 : next;
}

// Fills the value buffer that `serial` will name; readers look at the other one meanwhile.
void storeWords(Slot* slot, uint32_t serial, const char* value, size_t length) {
    uint64_t words[kValueWords] = {};
    std::memcpy(words, value, length);
    uint64_t* buffer = slot->value[bufferOf(serial)];
    for (size_t i = 0; i < kValueWords; ++i) {
        __atomic_store_n(&buffer[i], words[i], __ATOMIC_RELAXED);
        writeStep(static_cast<int>(i) + 1);
    }
}

// A free slot is filled completely, then published; readers never look inside a free slot.
void publishSlot(Slot* slot, const char* name, size_t nameLength, const char* value, size_t length) {
    std::memcpy(slot->name, name, nameLength);
    slot->name[nameLength] = '\0';
    slot->nameLength = static_cast<uint32_t>(nameLength);
    writeStep(0);
    storeWords(slot, 2u, value, length);
    __atomic_store_n(&slot->serial, 2u, __ATOMIC_RELEASE);
}

void updateValue(Slot* slot, const char* value, size_t length) {
    uint32_t next = nextSerial(__atomic_load_n(&slot->serial, __ATOMIC_RELAXED));
    // The serial that published the other buffer is visible before any word of this one: a
    // reader that copies a word of this write sees that serial change and copies again.
    __atomic_thread_fence(__ATOMIC_RELEASE);
    writeStep(0);
    storeWords(slot, next, value, length);
    __atomic_store_n(&slot->serial, next, __ATOMIC_RELEASE);
}

}  // namespace

// As bionic's, a read leaves errno as it was: callers format an earlier failure's errno after
// reading their log level.
extern "C" int property_get(const char* key, char* value, const char* default_value) {
    struct KeepErrno {
        int saved = errno;
        ~KeepErrno() { errno = saved; }
    } keepErrno;
    Store* store = currentStore(false);
    if (key != nullptr && store != nullptr) {
        size_t length = std::strlen(key);
        if (length < kNameMax) {
            const Slot* slot = findSlot(store->area, key, length);
            if (slot != nullptr && loadAcquire(&slot->serial) != 0) {
                int valueLength = readValue(slot, value);
                if (valueLength > 0) return valueLength;
            }
        }
    }
    if (default_value != nullptr) {
        size_t length = std::strlen(default_value);
        if (length >= PROPERTY_VALUE_MAX) length = PROPERTY_VALUE_MAX - 1;
        std::memcpy(value, default_value, length);
        value[length] = '\0';
        return static_cast<int>(length);
    }
    value[0] = '\0';
    return 0;
}

extern "C" int property_set(const char* key, const char* value) {
    if (key == nullptr) return -1;
    return vesk::host::setProperty(key, value != nullptr ? value : "").empty() ? 0 : -1;
}

namespace vesk::host {

std::string setProperty(const std::string& name, const std::string& value) {
    if (name.empty() || name.find('\0') != std::string::npos) return "no property name";
    if (name.size() >= kNameMax) {
        return "property names have at most " + std::to_string(kNameMax - 1) + " bytes";
    }
    if (value.size() >= PROPERTY_VALUE_MAX || value.find('\0') != std::string::npos) {
        return "property values have at most " + std::to_string(PROPERTY_VALUE_MAX - 1) + " bytes";
    }
    gStoreProblem.clear();
    Store* store = currentStore(true);
    if (store == nullptr) {
        return gStoreProblem.empty() ? "property store of no device root" : gStoreProblem;
    }
    std::lock_guard<std::mutex> lock(gWriteMutex);
    flock(store->fd, LOCK_EX);
    Slot* slot = findSlot(store->area, name.c_str(), name.size());
    if (slot != nullptr) {
        if (loadAcquire(&slot->serial) == 0) {
            publishSlot(slot, name.c_str(), name.size(), value.c_str(), value.size());
        } else {
            updateValue(slot, value.c_str(), value.size());
        }
    }
    flock(store->fd, LOCK_UN);
    if (slot == nullptr) return "property store full: " + std::to_string(kSlotCount) + " entries";
    return "";
}

// Every published property in table order (for `veskdm prop list`).
std::string listProperties() {
    Store* store = currentStore(false);
    std::string out;
    if (store == nullptr) return out;
    char value[PROPERTY_VALUE_MAX];
    for (const Slot& slot : store->area->slots) {
        if (loadAcquire(&slot.serial) == 0) continue;
        // A damaged slot (a name that does not fit or is not terminated where it says) is left
        // out; property_set never writes one.
        uint32_t nameLength = slot.nameLength;
        if (nameLength == 0 || nameLength >= kNameMax || slot.name[nameLength] != '\0' ||
            std::memchr(slot.name, '\0', nameLength) != nullptr) {
            continue;
        }
        if (readValue(&slot, value) <= 0) continue;
        out.append(slot.name, nameLength).append("=").append(value).append("\n");
    }
    return out;
}

}  // namespace vesk::host

namespace vesk::host {

void setPropertyWriteHook(PropertyWriteHook hook) {
    gWriteHook.store(hook, std::memory_order_relaxed);
}

}  // namespace vesk::host
