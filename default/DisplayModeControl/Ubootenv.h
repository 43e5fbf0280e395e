/*
 * The boot loader's environment: a raw partition holding two copies (at byte 0 and at byte
 * 65536) of a CRC-32-protected list of NUL-terminated key=value strings, ended by an empty
 * string. The object loads the partition when it is constructed and writes both copies back
 * when a value changes. Keys are stored without the "ubootenv.var." prefix that callers use.
 */
#pragma once

#include <pthread.h>
#include <stdint.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

// The prefix of every environment variable name seen by callers. The misspelt name is kept
// for compatibility with the code that shares it.
extern const char* PROFIX_UBOOTENV_VAR;

// Copy B starts here whatever the size of a copy; the boot loader looks for it there.
inline constexpr uint32_t kEnvCopyBOffset = 65536;

// The numeric property that sets which of this module's log lines are written.
inline constexpr char kUbootenvLevelProperty[] = "persist.vendor.sc.log.level";

// One variable of the environment; the nodes form a list in partition order.
struct EnvAttribute {
    EnvAttribute* next;
    char key[256];
    char value[4096];
};

class Ubootenv {
  public:
    // Finds the environment device, loads and parses it. The object is usable (but empty)
    // when no device could be read.
    Ubootenv();
    // Works on the given device or image file as it is named on this system (no device-path
    // mapping, no device search, default sizes), for tools that inspect any image.
    explicit Ubootenv(const char* device);
    ~Ubootenv();
    Ubootenv(const Ubootenv&) = delete;
    Ubootenv& operator=(const Ubootenv&) = delete;

    // 0; -2 when the MTD device cannot be opened or no good copy was read; -3 when the MTD
    // information cannot be had.
    int init();
    // Reads one good copy into image and parses it: 0; -1 open; -2 memory; -3 copy B checksum.
    int readPartitionData();
    // Rebuilds the attribute list from the data area.
    void parseAttribute();
    void propertyLoad();
    // True for "ubootenv.var.NAME" with a non-empty NAME.
    bool isEnv(const char* name);
    // The value of `key` (without prefix), or null. The caller holds `lock`.
    const char* get(const char* key);
    // The value of `name` (with prefix), or null; locks.
    const char* getValue(const char* name);
    void printValues();
    void dump(int fd);
    // Drops everything loaded and loads again; always 0.
    int reInit();

    // Stores `value` for `name` (with prefix) and saves when it changed: 0; -1 not loaded;
    // -2 not an environment name (or a key of 256 characters or more, or one holding '='); -5 no
    // memory for a new variable; -8 the value is longer than 4095 characters or the list would not
    // fit the data area; else the save's code.
    int updateValue(const char* name, const char* value);
    // Changes the list in memory: 2 changed, 1 appended, 0 not found and !create; -1 refused
    // (a key of 256 characters or more, or a value of 4096 or more).
    int set(const char* key, const char* value, bool create);
    // Formats the list, sets the CRC and writes both copies: 0; -1 open; -2 erase; -3 write;
    // -4 MTD information; -5 out of memory; -6 erase-block read; -7 seek; -8 the list does not
    // fit the data area (nothing written).
    int save();
    // Writes the list into the data area: 0; -1 when it would not fit (the area is untouched).
    int formatAttribute();

    // While it lives, the object's updates are one transaction with other processes: the
    // partition is held alone from the first update's look-up to the end of the scope, so that
    // no other process sees some of them without the others, and an update that changes
    // nothing is a look-up in memory. Outside such a scope each update is a transaction of its
    // own. Scopes may nest; the outermost one ends the transaction.
    class Transaction {
      public:
        explicit Transaction(Ubootenv& env);
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;

      private:
        Ubootenv& mEnv;
    };

    char devicePath[32];      // the chosen device ("/dev/block/env"); empty when none exists
    uint32_t partitionSize;   // bytes of one copy: CRC word and data area
    uint32_t dataSize;        // bytes of the data area covered by the CRC
    uint8_t* image;           // one copy as read, partitionSize bytes (at least 65536 allocated)
    uint32_t* crcWord;        // byte 0 of image
    uint8_t* data;            // byte 4 of image
    EnvAttribute attributes;  // first node of the list
    pthread_mutex_t lock;
    bool initDone;

  private:
    // The device as named in log lines and for the MTD test, and opening it (close-on-exec).
    const char* deviceName() const;
    int openPartition(int flags) const;
    // Bytes the formatted list needs in the data area (end mark included), with `key` set to
    // `value` when `key` is given.
    size_t formattedSize(const char* key, const char* value) const;
    // A buffer for one copy (and for the fixed-size read of copy B); false when out of memory.
    bool allocateImage();
    size_t imageCapacity() const;
    void freeImage();
    void freeAttributes();

    // The update's transaction with other processes: the partition held alone (flock) from the
    // look-up of the stored value to the end of the last save attempt, or of the enclosing
    // Transaction. Reads and saves inside it use the held descriptor (a second descriptor's
    // flock would wait on our own).
    bool beginTransaction();
    void endTransaction();
    int partitionFd(int flags) const;
    void releaseFd(int fd) const;
    // The CRC words of both copies as they are on the partition now; false when unreadable.
    bool readCrcWords(uint32_t words[2]) const;
    // Brings the list up to what another process saved since this object loaded: reloads and
    // replays this object's unsaved changes on top. False when the partition cannot be read.
    bool catchUp();
    // True for a partition that holds nothing yet (every byte 0x00 or 0xff, or no byte).
    bool partitionIsBlank() const;
    // True for an entry whose key was longer than a node holds: it is no key a caller can name.
    bool keyWasCut(const EnvAttribute* node) const;

    std::string explicitDevice;  // as given to the explicit-device constructor
    bool hasExplicitDevice = false;
    int transactionFd = -1;
    int transactionScopes = 0;  // Transaction objects alive
    // Since the partition was taken, the list was caught up with it and only this object saved:
    // a look-up needs no read.
    bool listIsCurrent = false;
    bool lastLoadGood = false;                                 // the last load read a copy
    uint32_t loadedCrcWords[2] = {0, 0};                       // both copies' CRC words then
    std::vector<std::pair<std::string, std::string>> pending;  // set since, not yet saved
    // Entries read longer than a node holds, as read: saved back byte for byte, never shortened.
    std::map<const EnvAttribute*, std::string> longEntries;
};
