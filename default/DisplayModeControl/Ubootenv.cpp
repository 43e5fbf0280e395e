/*
 * The boot loader's environment partition: choosing the device, reading and checking the two
 * copies, the attribute list, and writing both copies back.
 */
#include "Ubootenv.h"

#include <android/log.h>
#include <cutils/properties.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/major.h>
#include <mtd/mtd-user.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>

#include "DevicePaths.h"
#include "VeskPlatform.h"
#include "ZeroTailCrc.h"

const char* PROFIX_UBOOTENV_VAR = "ubootenv.var.";

namespace {

constexpr char kUbootenvTag[] = "Ubootenv";
constexpr uint32_t kCopyBOffset = kEnvCopyBOffset;
constexpr uint32_t kDefaultPartitionSize = 65536;
constexpr uint32_t kCrcSize = 4;
constexpr int kReadTries = 5;
constexpr int kSaveTries = 5;

// The module's own level: a numeric property, read afresh before every line.
bool levelAllows(int priority) {
    char level[PROPERTY_VALUE_MAX];
    memset(level, 0, sizeof(level));
    property_get(kUbootenvLevelProperty, level, "4");
    return atoi(level) <= priority;
}

const char* fileName(const char* path) {
    const char* slash = strrchr(path, '/');
    return slash != nullptr ? slash : path;
}

}  // namespace

// Every line starts with the source file's name, the logging function and the source line.
#define ENV_LOG(priority, format, ...)                                                  \
    do {                                                                                \
        if (levelAllows(priority)) {                                                    \
            __android_log_print(priority, kUbootenvTag, "[%s, %s, %d] " format,         \
                                fileName(__FILE__), __func__, __LINE__, ##__VA_ARGS__); \
        }                                                                               \
    } while (0)
#define ENV_LOGE(format, ...) ENV_LOG(ANDROID_LOG_ERROR, format, ##__VA_ARGS__)
#define ENV_LOGI(format, ...) ENV_LOG(ANDROID_LOG_INFO, format, ##__VA_ARGS__)

namespace {

class MutexGuard {
  public:
    explicit MutexGuard(pthread_mutex_t* mutex) : mMutex(mutex) { pthread_mutex_lock(mMutex); }
    ~MutexGuard() { pthread_mutex_unlock(mMutex); }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

  private:
    pthread_mutex_t* mMutex;
};

// Up to `count` bytes, across short reads; -1 when an error came before any byte.
ssize_t readFully(int fd, void* buffer, size_t count) {
    size_t done = 0;
    while (done < count) {
        ssize_t n = read(fd, static_cast<uint8_t*>(buffer) + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return done > 0 ? static_cast<ssize_t>(done) : -1;
        if (n == 0) break;
        done += static_cast<size_t>(n);
    }
    return static_cast<ssize_t>(done);
}

// All `count` bytes or -1: a copy written in part counts as not written.
ssize_t writeFully(int fd, const void* buffer, size_t count) {
    size_t done = 0;
    while (done < count) {
        ssize_t n = write(fd, static_cast<const uint8_t*>(buffer) + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return -1;
        done += static_cast<size_t>(n);
    }
    return static_cast<ssize_t>(done);
}

// Waits until the written copy is on the device. A device without a cache of its own (an MTD
// character device, a pipe) answers EINVAL or EROFS: its data is already where it goes.
bool syncCopy(int fd) {
    return fdatasync(fd) == 0 || errno == EINVAL || errno == EROFS;
}

// Readers share the device, a saver has it alone, so that no process ever reads a copy that
// another is writing. Advisory: should the lock be unavailable, the CRC check still guards.
void lockDevice(int fd, int operation) {
    while (flock(fd, operation) < 0 && errno == EINTR) {
    }
}

// Both copies' CRC words as they are now (zero where a copy is missing): a later update tells
// from them alone whether another process saved since.
void rememberCrcWords(int fd, uint32_t words[2]) {
    words[0] = words[1] = 0;
    if (pread(fd, &words[0], kCrcSize, 0) != static_cast<ssize_t>(kCrcSize)) words[0] = 0;
    if (pread(fd, &words[1], kCrcSize, kCopyBOffset) != static_cast<ssize_t>(kCrcSize))
        words[1] = 0;
}

uint32_t dataCrc(const uint8_t* data, uint32_t size) {
    return zeroTailCrc32(data, size);
}

}  // namespace

Ubootenv::Ubootenv()
    : partitionSize(kDefaultPartitionSize),
      dataSize(kDefaultPartitionSize - kCrcSize),
      image(nullptr),
      crcWord(nullptr),
      data(nullptr),
      initDone(false) {
    memset(devicePath, 0, sizeof(devicePath));
    memset(&attributes, 0, sizeof(attributes));
    memset(&lock, 0, sizeof(lock));  // a zeroed mutex is a default mutex
    init();
}

Ubootenv::Ubootenv(const char* device)
    : partitionSize(kDefaultPartitionSize),
      dataSize(kDefaultPartitionSize - kCrcSize),
      image(nullptr),
      crcWord(nullptr),
      data(nullptr),
      initDone(false),
      explicitDevice(device != nullptr ? device : ""),
      hasExplicitDevice(true) {
    memset(devicePath, 0, sizeof(devicePath));
    memset(&attributes, 0, sizeof(attributes));
    memset(&lock, 0, sizeof(lock));
    init();
}

Ubootenv::~Ubootenv() {
    freeImage();
    freeAttributes();
}

const char* Ubootenv::deviceName() const {
    return hasExplicitDevice ? explicitDevice.c_str() : devicePath;
}

// A device named by the caller is opened as named; the board's own through the platform.
// Only a regular file, a block device or an MTD character device holds an environment: the
// open does not wait (a FIFO without a writer would hold it for good), and anything else is
// refused before a read could wait on it.
int Ubootenv::openPartition(int flags) const {
    int fd = hasExplicitDevice ? open(explicitDevice.c_str(), flags | O_NONBLOCK | O_CLOEXEC)
                               : vesk::platform::openDevice(devicePath, flags | O_NONBLOCK);
    if (fd < 0) return fd;
    struct stat st;
    bool usable =
            fstat(fd, &st) == 0 && (S_ISREG(st.st_mode) || S_ISBLK(st.st_mode) ||
                                    (S_ISCHR(st.st_mode) && major(st.st_rdev) == MTD_CHAR_MAJOR));
    if (!usable || fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) {
        close(fd);
        errno = ENOTBLK;
        return -1;
    }
    return fd;
}

// Inside an update's transaction, the held descriptor itself (its lock is ours), from its
// start; otherwise a fresh open of the partition. Given back with releaseFd().
int Ubootenv::partitionFd(int flags) const {
    if (transactionFd < 0) return openPartition(flags);
    lseek(transactionFd, 0, SEEK_SET);
    return transactionFd;
}

void Ubootenv::releaseFd(int fd) const {
    if (fd != transactionFd) close(fd);
}

bool Ubootenv::beginTransaction() {
    int fd = openPartition(O_RDWR);
    if (fd < 0) return false;
    lockDevice(fd, LOCK_EX);
    transactionFd = fd;
    return true;
}

void Ubootenv::endTransaction() {
    if (transactionFd >= 0) close(transactionFd);  // releases the lock
    transactionFd = -1;
    listIsCurrent = false;
}

Ubootenv::Transaction::Transaction(Ubootenv& env) : mEnv(env) {
    MutexGuard guard(&mEnv.lock);
    ++mEnv.transactionScopes;
}

Ubootenv::Transaction::~Transaction() {
    MutexGuard guard(&mEnv.lock);
    if (--mEnv.transactionScopes == 0) mEnv.endTransaction();
}

bool Ubootenv::readCrcWords(uint32_t words[2]) const {
    if (transactionFd < 0) return false;
    rememberCrcWords(transactionFd, words);
    return true;
}

bool Ubootenv::keyWasCut(const EnvAttribute* node) const {
    if (longEntries.empty()) return false;
    auto it = longEntries.find(node);
    return it != longEntries.end() && it->second.find('=') >= sizeof(node->key);
}

bool Ubootenv::partitionIsBlank() const {
    if (transactionFd < 0) return false;
    uint8_t chunk[4096];
    off_t offset = 0;
    int fill = -1;  // the byte every byte so far has been
    for (;;) {
        ssize_t n = pread(transactionFd, chunk, sizeof(chunk), offset);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) return true;
        for (ssize_t i = 0; i < n; ++i) {
            if (fill < 0 && (chunk[i] == 0x00 || chunk[i] == 0xff)) fill = chunk[i];
            if (chunk[i] != fill) return false;
        }
        offset += n;
    }
}

bool Ubootenv::catchUp() {
    uint32_t words[2];
    if (lastLoadGood && readCrcWords(words) && words[0] == loadedCrcWords[0] &&
        words[1] == loadedCrcWords[1]) {
        return true;  // nobody saved since this object loaded
    }
    if (readPartitionData() != 0) {
        lastLoadGood = false;
        // Nothing on the partition yet (first boot, or erased): nothing to keep but our list.
        return partitionIsBlank();
    }
    lastLoadGood = true;
    for (const auto& [key, value] : pending) set(key.c_str(), value.c_str(), true);
    return true;
}

void Ubootenv::freeImage() {
    free(image);
    image = nullptr;
    crcWord = nullptr;
    data = nullptr;
}

size_t Ubootenv::imageCapacity() const {
    // Room for one copy, and for the fixed-size read of copy B when a copy is smaller.
    return std::max(partitionSize, kCopyBOffset);
}

bool Ubootenv::allocateImage() {
    freeImage();
    auto* buffer = static_cast<uint8_t*>(malloc(imageCapacity()));
    if (buffer == nullptr) return false;
    image = buffer;
    crcWord = reinterpret_cast<uint32_t*>(buffer);
    data = buffer + kCrcSize;
    return true;
}

void Ubootenv::freeAttributes() {
    EnvAttribute* node = attributes.next;
    while (node != nullptr) {
        EnvAttribute* next = node->next;
        free(node);
        node = next;
    }
    memset(&attributes, 0, sizeof(attributes));
    longEntries.clear();
}

int Ubootenv::init() {
    partitionSize = kDefaultPartitionSize;
    dataSize = kDefaultPartitionSize - kCrcSize;
    if (hasExplicitDevice) {
        snprintf(devicePath, sizeof(devicePath), "%s", explicitDevice.c_str());
    } else {
        const auto& kDevices = vesk::platform::kEnvDevices;
        constexpr int kMtdDevice = vesk::platform::kEnvMtdDevice;
        memset(devicePath, 0, sizeof(devicePath));
        int chosen = -1;
        for (int i = 0; i < 4; ++i) {
            struct stat st;
            if (stat(vesk::platform::devicePath(kDevices[i]).c_str(), &st) == 0) {
                snprintf(devicePath, sizeof(devicePath), "%s", kDevices[i]);
                chosen = i;
                break;
            }
        }
        if (chosen == kMtdDevice) {
            int fd = openPartition(O_RDWR);
            if (fd < 0) {
                ENV_LOGE("[ubootenv] open device(%s) error\n", devicePath);
                return -2;
            }
            mtd_info_user info;
            memset(&info, 0, sizeof(info));
            if (vesk::platform::mtdGetInfo(fd, &info) < 0) {
                ENV_LOGE("[ubootenv] get MTD info error\n");
                close(fd);
                return -3;
            }
            close(fd);
            if (info.size <= 2 * kCrcSize) {
                ENV_LOGE("[ubootenv] MTD size %u too small for an environment\n", info.size);
                return -3;
            }
            partitionSize = info.size;
            dataSize = info.size - 2 * kCrcSize;
        }
    }
    ENV_LOGI("[ubootenv] using %s with size(%d) (%d)", deviceName(),
             static_cast<int>(partitionSize), static_cast<int>(dataSize));

    int attempt = 0;
    for (; attempt < kReadTries; ++attempt) {
        int result = readPartitionData();
        if (result == 0) break;
        ENV_LOGE("[ubootenv] Cannot read %s: %d.\n", deviceName(), result);
        if (result <= -3) freeImage();
    }
    // A copy read only on the last try leaves initDone unset; this has always been so and the
    // callers are used to it.
    lastLoadGood = attempt < kReadTries;
    if (attempt < kReadTries - 1) {
        propertyLoad();
        return 0;
    }
    ENV_LOGE("[ubootenv] read %s failed \n", deviceName());
    return -2;
}

int Ubootenv::readPartitionData() {
    int fd = partitionFd(O_RDONLY);
    if (fd < 0) {
        ENV_LOGE("[ubootenv] open devices error: %s\n", strerror(errno));
        return -1;
    }
    if (!allocateImage()) {
        ENV_LOGE("[ubootenv] Not enough memory for environment (%u bytes)\n", partitionSize);
        releaseFd(fd);
        return -2;
    }
    if (transactionFd < 0) lockDevice(fd, LOCK_SH);

    ssize_t count = readFully(fd, image, partitionSize);
    // The buffer is zero beyond what was read.
    size_t filled = count > 0 ? static_cast<size_t>(count) : 0;
    memset(image + filled, 0, imageCapacity() - filled);
    if (count == static_cast<ssize_t>(partitionSize)) {
        uint32_t crc = dataCrc(data, dataSize);
        if (crc == *crcWord) {
            rememberCrcWords(fd, loadedCrcWords);
            parseAttribute();
            releaseFd(fd);
            return 0;
        }
        ENV_LOGE("[ubootenv] CRC Check SYS_LOGE save_crc=%08x, crcCalc = %08x \n", *crcWord, crc);
    } else {
        ENV_LOGE("[ubootenv] read error 0x%x \n", static_cast<unsigned>(count));
    }

    ENV_LOGI("first env error, try second....\n");
    off_t seek = lseek(fd, kCopyBOffset, SEEK_SET);
    if (seek != kCopyBOffset) ENV_LOGE("[ubootenv] lseek error, seeknum = %d \n", (int)seek);
    count = readFully(fd, image, kCopyBOffset);
    // A copy of another size than 65536 bytes is taken from copy B on trust.
    if (count == static_cast<ssize_t>(partitionSize)) {
        uint32_t crc = dataCrc(data, dataSize);
        if (crc != *crcWord) {
            ENV_LOGE("[ubootenv] CRC2 Check SYS_LOGE save_crc=%08x, crcCalc = %08x \n", *crcWord,
                     crc);
            releaseFd(fd);
            return -3;
        }
    }
    rememberCrcWords(fd, loadedCrcWords);
    parseAttribute();
    releaseFd(fd);
    return 0;
}

void Ubootenv::parseAttribute() {
    freeAttributes();
    if (data == nullptr || dataSize == 0) return;
    char* area = reinterpret_cast<char*>(data);
    EnvAttribute* node = &attributes;
    size_t offset = 0;
    for (;;) {
        char* text = area + offset;
        size_t length = strnlen(text, dataSize - offset);
        auto* equals = static_cast<char*>(memchr(text, '=', length));
        if (equals != nullptr) {
            *equals = '\0';
            size_t keyLength = static_cast<size_t>(equals - text);
            size_t valueLength = length - keyLength - 1;
            if (keyLength >= sizeof(node->key) || valueLength >= sizeof(node->value)) {
                // Longer than a node holds: kept as read, and saved back byte for byte.
                std::string whole(text, length);
                whole[keyLength] = '=';
                longEntries[node] = std::move(whole);
            }
            if (keyLength >= sizeof(node->key)) {
                ENV_LOGE("[ubootenv] key of %zu characters cut to %zu\n", keyLength,
                         sizeof(node->key) - 1);
                keyLength = sizeof(node->key) - 1;
            }
            memcpy(node->key, text, keyLength);
            if (valueLength >= sizeof(node->value)) {
                ENV_LOGE("[ubootenv] value of %s (%zu characters) cut to %zu\n", node->key,
                         valueLength, sizeof(node->value) - 1);
                valueLength = sizeof(node->value) - 1;
            }
            memcpy(node->value, equals + 1, valueLength);
        } else {
            ENV_LOGE("[ubootenv] error need '=' skip this value\n");
        }
        size_t next = offset + length + 1;
        if (next >= dataSize) {
            // Never walk past the area: a list without its empty string ends here.
            ENV_LOGE("[ubootenv] env data has no end mark within %u bytes\n", dataSize);
            return;
        }
        if (area[next] == '\0') return;
        auto* added = static_cast<EnvAttribute*>(calloc(1, sizeof(EnvAttribute)));
        if (added == nullptr) {
            ENV_LOGE("[ubootenv] parse attribute malloc error \n");
            return;
        }
        node->next = added;
        node = added;
        offset = next;
    }
}

void Ubootenv::propertyLoad() {
    ENV_LOGI("[ubootenv] set property count: %d\n", 0);
    initDone = true;
}

bool Ubootenv::isEnv(const char* name) {
    if (name == nullptr || name[0] == '\0') return false;
    if (PROFIX_UBOOTENV_VAR == nullptr || PROFIX_UBOOTENV_VAR[0] == '\0') return false;
    size_t prefixLength = strlen(PROFIX_UBOOTENV_VAR);
    return strncmp(name, PROFIX_UBOOTENV_VAR, prefixLength) == 0 && strlen(name) > prefixLength;
}

const char* Ubootenv::get(const char* key) {
    if (!initDone) {
        ENV_LOGE("[ubootenv] don't init done\n");
        return nullptr;
    }
    if (key == nullptr) return nullptr;
    for (EnvAttribute* node = &attributes; node != nullptr; node = node->next) {
        if (strcmp(node->key, key) == 0 && !keyWasCut(node)) return node->value;
    }
    return nullptr;
}

const char* Ubootenv::getValue(const char* name) {
    if (!isEnv(name)) {
        ENV_LOGE("[ubootenv] %s is not a ubootenv variable and need prefix:ubootenv.var.xxx\n",
                 name != nullptr ? name : "(null)");
        printValues();
        return nullptr;
    }
    MutexGuard guard(&lock);
    return get(name + strlen(PROFIX_UBOOTENV_VAR));
}

void Ubootenv::printValues() {
    for (EnvAttribute* node = &attributes; node != nullptr; node = node->next) {
        ENV_LOGI("[ubootenv] key: [%s], value: [%s]\n", node->key, node->value);
    }
}

void Ubootenv::dump(int fd) {
    for (EnvAttribute* node = &attributes; node != nullptr; node = node->next) {
        dprintf(fd, "[ubootenv] key: [%s], value: [%s]\n", node->key, node->value);
    }
}

int Ubootenv::reInit() {
    MutexGuard guard(&lock);
    freeImage();
    freeAttributes();
    init();
    return 0;
}

int Ubootenv::updateValue(const char* name, const char* value) {
    if (value == nullptr) value = "";
    // Held for the whole update, the lookup included, so that no other thread's update or
    // reload changes the list under it.
    MutexGuard guard(&lock);
    if (!initDone) {
        ENV_LOGE("[ubootenv] bootenv do not init\n");
        return -1;
    }
    ENV_LOGI("[ubootenv] update value name [%s]: value [%s] \n", name != nullptr ? name : "(null)",
             value);
    const char* key;
    if (name != nullptr && strcmp(name, "ubootenv.var.bootcmd") == 0) {
        key = "bootcmd";
    } else if (isEnv(name) && strchr(name, '=') == nullptr) {
        // A key holding '=' would be read back as another key (the first '=' ends a key), as
        // the boot loader's own tools refuse it.
        key = name + strlen(PROFIX_UBOOTENV_VAR);
    } else {
        ENV_LOGE("[ubootenv] %s is not a ubootenv variable.\n", name != nullptr ? name : "(null)");
        return -2;
    }
    if (strlen(key) >= sizeof(attributes.key)) {
        ENV_LOGE("[ubootenv] key of %zu characters is too long (at most %zu)\n", strlen(key),
                 sizeof(attributes.key) - 1);
        return -2;
    }
    if (strlen(value) >= sizeof(attributes.value)) {
        ENV_LOGE("[ubootenv] value of %s (%zu characters) is too long (at most %zu)\n", key,
                 strlen(value), sizeof(attributes.value) - 1);
        return -8;
    }

    // Other processes save the same partition: from here to the last save (inside a Transaction,
    // to its end) it is ours alone, and the list is first brought up to what they saved. Once
    // caught up, a partition still held has changed only by our own saves.
    bool held = transactionFd >= 0 || beginTransaction();
    struct TransactionEnd {
        Ubootenv* env;
        ~TransactionEnd() {
            if (env->transactionScopes == 0) env->endTransaction();
        }
    } transactionEnd{this};
    if (held && !listIsCurrent) listIsCurrent = catchUp();
    if ((held && !listIsCurrent) || (!held && !lastLoadGood)) {
        ENV_LOGE("[ubootenv] %s could not be read: not writing over it\n", deviceName());
        return -1;
    }

    const char* current = get(key);
    if (strcmp(current != nullptr ? current : "", value) == 0) return 0;

    size_t needed = formattedSize(key, value);
    if (needed > dataSize) {
        ENV_LOGE("[ubootenv] no room for %s: the env needs %zu bytes, the data area has %u\n", key,
                 needed, dataSize);
        return -8;
    }
    if (set(key, value, true) < 0) {
        ENV_LOGE("[ubootenv] Out of memory!!!\n");
        return -5;
    }
    auto change = std::find_if(pending.begin(), pending.end(),
                               [key](const auto& entry) { return entry.first == key; });
    if (change != pending.end()) {
        change->second = value;
    } else {
        pending.emplace_back(key, value);
    }
    int result = 0;
    int attempt = 0;
    for (; attempt < kSaveTries; ++attempt) {
        result = save();
        if (result == 0) break;
        ENV_LOGE("[ubootenv] Cannot write %s: %d.\n", deviceName(), result);
    }
    // A save that succeeds only on the last try is not announced; kept as it always was.
    if (attempt < kSaveTries - 1)
        ENV_LOGI("[ubootenv] Save ubootenv to %s succeed!\n", deviceName());
    if (result == 0) {
        // Both copies now hold this list: nothing of ours is left to replay.
        pending.clear();
        if (!readCrcWords(loadedCrcWords)) loadedCrcWords[0] = loadedCrcWords[1] = *crcWord;
        lastLoadGood = true;
    }
    return result;
}

int Ubootenv::set(const char* key, const char* value, bool create) {
    if (key == nullptr || value == nullptr) return -1;
    size_t valueLength = strlen(value);
    if (valueLength >= sizeof(attributes.value)) {
        ENV_LOGE("[ubootenv] value of %zu characters is too long (at most %zu)\n", valueLength,
                 sizeof(attributes.value) - 1);
        return -1;
    }
    EnvAttribute* last = &attributes;
    for (EnvAttribute* node = &attributes; node != nullptr; node = node->next) {
        if (strcmp(node->key, key) == 0 && !keyWasCut(node)) {
            memcpy(node->value, value, valueLength + 1);
            longEntries.erase(node);  // the new value is what the entry now holds
            return 2;
        }
        last = node;
    }
    if (!create) return 0;
    size_t keyLength = strlen(key);
    if (keyLength >= sizeof(attributes.key)) {
        ENV_LOGE("[ubootenv] key of %zu characters is too long (at most %zu)\n", keyLength,
                 sizeof(attributes.key) - 1);
        return -1;
    }
    auto* added = static_cast<EnvAttribute*>(calloc(1, sizeof(EnvAttribute)));
    if (added == nullptr) return -1;
    memcpy(added->key, key, keyLength + 1);
    memcpy(added->value, value, valueLength + 1);
    last->next = added;
    return 1;
}

size_t Ubootenv::formattedSize(const char* key, const char* value) const {
    size_t position = 0;
    size_t leftOver = 0;  // a text of 2 characters or fewer stays where the next one would go
    auto add = [&](const char* k, const char* v) {
        size_t length = strlen(k) + 1 + strlen(v);
        if (length > 2) {
            position += length + 1;
            leftOver = 0;
        } else {
            leftOver = length + 1;
        }
    };
    bool found = false;
    for (const EnvAttribute* node = &attributes; node != nullptr; node = node->next) {
        if (key != nullptr && !found && strcmp(node->key, key) == 0 && !keyWasCut(node)) {
            add(node->key, value);
            found = true;
        } else if (!longEntries.empty() && longEntries.count(node) != 0) {
            add(longEntries.at(node).c_str(), "");
        } else {
            add(node->key, node->value);
        }
    }
    if (key != nullptr && !found) add(key, value);
    return position + leftOver + 1;  // the empty string that ends the list
}

int Ubootenv::formatAttribute() {
    size_t needed = formattedSize(nullptr, nullptr);
    if (data == nullptr || needed > dataSize) {
        ENV_LOGE("[ubootenv] env data of %zu bytes does not fit the data area (%u bytes)\n", needed,
                 dataSize);
        return -1;
    }
    memset(data, 0, dataSize);
    char* area = reinterpret_cast<char*>(data);
    size_t position = 0;
    for (const EnvAttribute* node = &attributes; node != nullptr; node = node->next) {
        int length;
        if (!longEntries.empty() && longEntries.count(node) != 0) {
            // An entry longer than a node is written back as it was read, never shortened.
            const std::string& whole = longEntries.at(node);
            memcpy(area + position, whole.data(), whole.size());
            length = static_cast<int>(whole.size());
        } else {
            length = snprintf(area + position, dataSize - position, "%s=%s", node->key, node->value);
        }
        if (length > 2) {
            position += static_cast<size_t>(length) + 1;
        } else {
            ENV_LOGE("[ubootenv] Invalid env data key:%s, value:%s\n", node->key, node->value);
        }
    }
    return 0;
}

int Ubootenv::save() {
    if (image == nullptr) {
        if (!allocateImage()) {
            ENV_LOGE("[ubootenv] Out of memory!!!\n");
            return -5;
        }
        memset(image, 0, imageCapacity());
    }
    if (formatAttribute() < 0) return -8;
    *crcWord = dataCrc(data, dataSize);

    int fd = partitionFd(O_RDWR);
    if (fd < 0) {
        ENV_LOGE("[ubootenv] open devices error\n");
        return -1;
    }
    if (transactionFd < 0) lockDevice(fd, LOCK_EX);  // released by close()
    ssize_t result = 0;
    if (strstr(deviceName(), "mtd") != nullptr) {
        mtd_info_user info;
        memset(&info, 0, sizeof(info));
        if (vesk::platform::mtdGetInfo(fd, &info) < 0) {
            ENV_LOGE("[ubootenv] Get MTD info error\n");
            releaseFd(fd);
            return -4;
        }
        const uint64_t eraseSize = info.erasesize;
        const uint64_t bothCopies = 2ull * partitionSize;
        uint8_t* block = nullptr;
        uint64_t eraseLength = bothCopies;
        if (eraseSize > bothCopies) {
            // Both copies share one erase block: keep the rest of the block as it is.
            block = static_cast<uint8_t*>(malloc(eraseSize));
            if (block == nullptr) {
                ENV_LOGE("[ubootenv] Out of memory!!!\n");
                releaseFd(fd);
                return -5;
            }
            memset(block, 0, eraseSize);
            if (readFully(fd, block, eraseSize) != static_cast<ssize_t>(eraseSize)) {
                ENV_LOGE("[ubootenv] Read access failed !!!\n");
                free(block);
                releaseFd(fd);
                return -6;
            }
            memcpy(block, image, partitionSize);
            if (eraseSize > kCopyBOffset) {
                memcpy(block + kCopyBOffset, image,
                       std::min<uint64_t>(partitionSize, eraseSize - kCopyBOffset));
            }
            eraseLength = eraseSize;
        }
        erase_info_user erase;
        memset(&erase, 0, sizeof(erase));
        erase.start = 0;
        erase.length = static_cast<uint32_t>(eraseLength);
        int erased = vesk::platform::mtdErase(fd, &erase);
        if (erased < 0) {
            ENV_LOGE("[ubootenv] MEMERASE SYS_LOGE %d\n", erased);
            free(block);
            releaseFd(fd);
            return -2;
        }
        if (eraseSize <= partitionSize) {
            // Both copies are erased already: copy B is written even if copy A failed.
            if (writeFully(fd, image, partitionSize) >= 0) syncCopy(fd);
            off_t seek = lseek(fd, kCopyBOffset, SEEK_SET);
            if (seek != kCopyBOffset) {
                ENV_LOGE("[ubootenv] can not lseek, seek num = %d \n", (int)seek);
            }
            result = writeFully(fd, image, partitionSize);
            if (result >= 0 && !syncCopy(fd)) result = -1;
        } else {
            if (lseek(fd, 0, SEEK_SET) < 0) {
                ENV_LOGE("%s() %d: err is %d\n", __func__, __LINE__, errno);
                free(block);
                releaseFd(fd);
                return -7;
            }
            if (block != nullptr) {
                result = writeFully(fd, block, eraseSize);
                if (result >= 0 && !syncCopy(fd)) result = -1;
            } else {
                ENV_LOGE("data is NULL\n");
            }
            free(block);
        }
    } else {
        lseek(fd, 0, SEEK_SET);
        // Copy A is on the device before copy B is touched, so that a save cut short at any
        // point leaves one good copy: the old one in B or the new one in A. Copy B is written
        // even when copy A failed; the result is that of copy B.
        if (writeFully(fd, image, partitionSize) >= 0) syncCopy(fd);
        off_t seek = lseek(fd, kCopyBOffset, SEEK_SET);
        if (seek != kCopyBOffset) {
            ENV_LOGE("[ubootenv] lseek error, seek num = %d \n", (int)seek);
        }
        result = writeFully(fd, image, partitionSize);
        if (result >= 0 && !syncCopy(fd)) result = -1;
    }
    releaseFd(fd);
    if (result < 0) {
        ENV_LOGE("[ubootenv] SYS_LOGE write, size %d \n", static_cast<int>(partitionSize));
        return -3;
    }
    return 0;
}
