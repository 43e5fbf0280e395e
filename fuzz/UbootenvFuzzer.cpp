/*
 * The boot loader's environment partition from any image: load, print, look up, update, save
 * and load again. What is loaded after a save must be the list that was saved, entry for entry,
 * apart from the entries whose "key=value" text is two characters or fewer, which the format
 * drops (the last of them, when no longer entry follows, stays in the data area).
 */
#include <fcntl.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdint.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "EnvImage.h"
#include "FuzzRoot.h"
#include "Ubootenv.h"

namespace {

using Entry = std::pair<std::string, std::string>;
using Entries = std::vector<Entry>;

constexpr size_t kCopySize = 65536;

Entries entriesOf(Ubootenv& env) {
    Entries entries;
    for (const EnvAttribute* node = &env.attributes; node != nullptr; node = node->next) {
        entries.emplace_back(node->key, node->value);
    }
    return entries;
}

void printEntries(const char* what, const Entries& entries) {
    fprintf(stderr, "%s:\n", what);
    for (const Entry& entry : entries) {
        fprintf(stderr, "  [%s]=[%s]\n", entry.first.c_str(), entry.second.c_str());
    }
}

// What a load finds after the list was saved: every entry whose text is longer than two
// characters, in order, then the text of the last short entry written after them, read back
// as a load reads it (split at its first '=').
Entries expectedAfterSave(const Entries& saved) {
    Entries expected;
    std::optional<std::string> leftOver;
    for (const Entry& entry : saved) {
        std::string text = entry.first + "=" + entry.second;
        if (text.size() > 2) {
            expected.push_back(entry);
            leftOver.reset();
        } else {
            leftOver = text;
        }
    }
    if (leftOver) {
        size_t equals = leftOver->find('=');
        expected.emplace_back(leftOver->substr(0, equals), leftOver->substr(equals + 1));
    }
    return expected;
}

// A name the caller spells: mostly "ubootenv.var." and a key, sometimes anything.
std::string nameFrom(FuzzedDataProvider& in) {
    std::string key = in.ConsumeRandomLengthString(300);
    switch (in.ConsumeIntegralInRange<int>(0, 3)) {
        case 0:
            return key;
        case 1:
            return "ubootenv.var.bootcmd";
        default:
            return std::string(PROFIX_UBOOTENV_VAR) + key;
    }
}

void writeImage(const std::string& path, const std::vector<uint8_t>& image) {
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) abort();
    if (!image.empty() &&
        write(fd, image.data(), image.size()) != static_cast<ssize_t>(image.size()))
        abort();
    close(fd);
}

// Sets the CRC of the copy at `offset` when the image holds all of it.
void sealCopy(std::vector<uint8_t>& image, size_t offset) {
    if (image.size() < offset + kCopySize) return;
    vesk::test::sealCopy(image.data() + offset, kCopySize);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::string& root = vesk::fuzz::freshRoot();
    const std::string path = root + "/image";
    FuzzedDataProvider in(bytes, size);

    // The image: its length, then its bytes laid out from byte 0 (the rest of the input drives
    // the calls); the copies are given valid CRCs on request, so that parsing is reached.
    uint8_t layout = in.ConsumeIntegral<uint8_t>();
    size_t imageSize = (layout & 3) == 0   ? in.ConsumeIntegralInRange<size_t>(0, 3 * kCopySize)
                       : (layout & 3) == 3 ? kCopySize
                                           : 2 * kCopySize;
    std::string text = in.ConsumeRandomLengthString(8192);
    std::vector<uint8_t> image(imageSize, 0);
    for (size_t copy = 0; copy < imageSize; copy += kCopySize) {
        // Each copy holds the text after its CRC word.
        size_t start = copy + 4;
        for (size_t i = 0; i < text.size() && start + i < imageSize && i < kCopySize - 4; ++i) {
            image[start + i] = static_cast<uint8_t>(text[i]);
        }
    }
    if (layout & 4) sealCopy(image, 0);
    if (layout & 8) sealCopy(image, kCopySize);
    writeImage(path, image);

    Ubootenv env(path.c_str());
    env.printValues();
    int devNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
    env.dump(devNull);
    close(devNull);

    int updates = in.ConsumeIntegralInRange<int>(0, 4);
    for (int i = 0; i < updates; ++i) {
        std::string name = nameFrom(in);
        env.getValue(name.c_str());
        std::string value = in.ConsumeRandomLengthString(5000);
        env.updateValue(name.c_str(), value.c_str());
    }

    if (env.initDone) {
        Entries saved = entriesOf(env);
        if (env.save() == 0) {
            Ubootenv reloaded(path.c_str());
            Entries expected = expectedAfterSave(saved);
            Entries found = entriesOf(reloaded);
            if (!reloaded.initDone || found != expected) {
                printEntries("saved", saved);
                printEntries("expected", expected);
                printEntries("reloaded", found);
                __builtin_trap();
            }
        }
    }
    return 0;
}
