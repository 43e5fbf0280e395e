/*
 * property_get / property_set of <cutils/properties.h> over a shared, persistent store below
 * the device root.
 *
 * The store is one file mapped shared into every process that uses the root, laid out like
 * bionic's property area: a fixed open-addressing table of slots. A slot's name is written once,
 * before the slot is published; its value is guarded by a sequence counter, so readers never
 * lock and never make a system call, and a value set by one process is what the very next read
 * in any other process sees. Writers serialise with a mutex (threads) and flock (processes).
 */
#include <cutils/properties.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "HostInternal.h"
#include "vesk/host/DeviceRoot.h"

namespace {

constexpr uint32_t kMagic = 0x56455350;  // "VESP"
constexpr uint32_t kVersion = 1;
constexpr uint32_t kSlotCount = 2048;
constexpr size_t kNameMax = 256;    // name bytes, terminator included
constexpr size_t kValueWords = 12;  // 96 bytes: PROPERTY_VALUE_MAX rounded up to whole words
static_assert(kValueWords * 8 >= PROPERTY_VALUE_MAX);

struct Slot {
    uint32_t serial;  // 0: free; odd: value being written; even: published
    uint32_t nameLength;
    char name[kNameMax];
    uint64_t value[kValueWords];
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
};

std::mutex gWriteMutex;
std::mutex gOpenMutex;
std::atomic<Store*> gStore{nullptr};

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

Store* openStore(uint64_t generation, const std::string& root) {
    auto* store = new Store{generation, root};
    std::string path = root + vesk::host::kPropertyStore;
    store->fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (store->fd < 0) return store;
    flock(store->fd, LOCK_EX);
    struct stat st {};
    if (fstat(store->fd, &st) == 0 && static_cast<size_t>(st.st_size) < sizeof(Area)) {
        if (ftruncate(store->fd, sizeof(Area)) != 0) {
            flock(store->fd, LOCK_UN);
            return store;
        }
    }
    void* map = mmap(nullptr, sizeof(Area), PROT_READ | PROT_WRITE, MAP_SHARED, store->fd, 0);
    if (map != MAP_FAILED) {
        auto* area = static_cast<Area*>(map);
        if (area->magic != kMagic) {
            area->version = kVersion;
            area->slotCount = kSlotCount;
            __atomic_store_n(&area->magic, kMagic, __ATOMIC_RELEASE);
        }
        store->area = area;
    }
    flock(store->fd, LOCK_UN);
    return store;
}

// The store of the current device root. The root is fixed for a process in practice; when a
// test changes it, the old mapping is kept (never unmapped) so that no reader is left dangling.
Store* currentStore() {
    Store* store = gStore.load(std::memory_order_acquire);
    if (store != nullptr && store->generation == vesk::host::rootGeneration()) return store;
    std::lock_guard<std::mutex> lock(gOpenMutex);
    uint64_t generation = vesk::host::rootGeneration();
    std::string root = vesk::host::deviceRoot();
    store = gStore.load(std::memory_order_acquire);
    if (store == nullptr || store->generation != generation) {
        // The stores of earlier roots stay reachable here: kept, not leaked.
        static auto* earlier = new std::vector<Store*>();  // never destroyed
        if (store != nullptr) earlier->push_back(store);
        store = openStore(generation, root);
        gStore.store(store, std::memory_order_release);
    }
    return store;
}

// The slot holding `name`, or the free slot where it would go (nullptr when the table is full).
Slot* findSlot(Area* area, const char* name, size_t length) {
    uint32_t index = hashName(name, length) % kSlotCount;
    for (uint32_t probe = 0; probe < kSlotCount; ++probe) {
        Slot* slot = &area->slots[(index + probe) % kSlotCount];
        if (loadAcquire(&slot->serial) == 0) return slot;
        if (slot->nameLength == length && std::memcmp(slot->name, name, length) == 0) return slot;
    }
    return nullptr;
}

// Copies the published value of `slot` into `out` (PROPERTY_VALUE_MAX bytes); its length.
size_t readValue(const Slot* slot, char* out) {
    uint64_t words[kValueWords];
    for (;;) {
        uint32_t before = loadAcquire(&slot->serial);
        if (before & 1u) continue;
        for (size_t i = 0; i < kValueWords; ++i) {
            words[i] = __atomic_load_n(&slot->value[i], __ATOMIC_RELAXED);
        }
        __atomic_thread_fence(__ATOMIC_ACQUIRE);
        if (__atomic_load_n(&slot->serial, __ATOMIC_RELAXED) == before) break;
    }
    std::memcpy(out, words, PROPERTY_VALUE_MAX);
    out[PROPERTY_VALUE_MAX - 1] = '\0';
    return std::strlen(out);
}

void storeWords(Slot* slot, const char* value, size_t length) {
    uint64_t words[kValueWords] = {};
    std::memcpy(words, value, length);
    for (size_t i = 0; i < kValueWords; ++i) {
        __atomic_store_n(&slot->value[i], words[i], __ATOMIC_RELAXED);
    }
}

// A free slot is filled completely, then published; readers never look inside a free slot.
void publishSlot(Slot* slot, const char* name, size_t nameLength, const char* value, size_t length) {
    std::memcpy(slot->name, name, nameLength);
    slot->name[nameLength] = '\0';
    slot->nameLength = static_cast<uint32_t>(nameLength);
    storeWords(slot, value, length);
    __atomic_store_n(&slot->serial, 2u, __ATOMIC_RELEASE);
}

void updateValue(Slot* slot, const char* value, size_t length) {
    uint32_t serial = __atomic_load_n(&slot->serial, __ATOMIC_RELAXED);
    __atomic_store_n(&slot->serial, serial + 1, __ATOMIC_RELAXED);
    __atomic_thread_fence(__ATOMIC_RELEASE);
    storeWords(slot, value, length);
    __atomic_store_n(&slot->serial, serial + 2, __ATOMIC_RELEASE);
}

}  // namespace

extern "C" int property_get(const char* key, char* value, const char* default_value) {
    Store* store = currentStore();
    if (key != nullptr && store->area != nullptr) {
        size_t length = std::strlen(key);
        if (length < kNameMax) {
            const Slot* slot = findSlot(store->area, key, length);
            if (slot != nullptr && loadAcquire(&slot->serial) != 0) {
                size_t valueLength = readValue(slot, value);
                if (valueLength > 0) return static_cast<int>(valueLength);
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
    if (key == nullptr || key[0] == '\0') return -1;
    if (value == nullptr) value = "";
    size_t length = std::strlen(key);
    size_t valueLength = std::strlen(value);
    if (length >= kNameMax || valueLength >= PROPERTY_VALUE_MAX) return -1;
    Store* store = currentStore();
    if (store->area == nullptr) return -1;
    std::lock_guard<std::mutex> lock(gWriteMutex);
    flock(store->fd, LOCK_EX);
    int result = -1;
    Slot* slot = findSlot(store->area, key, length);
    if (slot != nullptr) {
        if (loadAcquire(&slot->serial) == 0) {
            publishSlot(slot, key, length, value, valueLength);
        } else {
            updateValue(slot, value, valueLength);
        }
        result = 0;
    }
    flock(store->fd, LOCK_UN);
    return result;
}

namespace vesk::host {

// Every published property in table order (for `veskdm prop list`).
std::string listProperties() {
    Store* store = currentStore();
    std::string out;
    if (store->area == nullptr) return out;
    char value[PROPERTY_VALUE_MAX];
    for (const Slot& slot : store->area->slots) {
        if (loadAcquire(&slot.serial) == 0) continue;
        readValue(&slot, value);
        out.append(slot.name, slot.nameLength).append("=").append(value).append("\n");
    }
    return out;
}

}  // namespace vesk::host
