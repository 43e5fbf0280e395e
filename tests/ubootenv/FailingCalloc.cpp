#include "FailingCalloc.h"

#include <atomic>

extern "C" void* __real_calloc(size_t count, size_t size);

namespace {

std::atomic<size_t> gSize{0};
std::atomic<int> gSuccesses{-1};

}  // namespace

extern "C" void* __wrap_calloc(size_t count, size_t size) {
    if (gSize.load() != 0 && count * size == gSize.load()) {
        if (gSuccesses.fetch_sub(1) == 0) {
            gSize.store(0);
            return nullptr;
        }
    }
    return __real_calloc(count, size);
}

namespace vesk::test {

void failCallocOfSize(size_t size, int successes) {
    gSuccesses.store(successes);
    gSize.store(size);
}

}  // namespace vesk::test
