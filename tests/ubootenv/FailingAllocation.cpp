#include "FailingAllocation.h"

#include <atomic>

extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __real_malloc(size_t size);

namespace {

std::atomic<size_t> gCallocSize{0};
std::atomic<int> gCallocSuccesses{-1};
std::atomic<size_t> gMallocLimit{0};  // 0: none

}  // namespace

extern "C" void* __wrap_calloc(size_t count, size_t size) {
    // A malloc() followed by a memset() to zero may be compiled into a calloc().
    const size_t limit = gMallocLimit.load();
    if (limit != 0 && size != 0 && count >= limit / size) return nullptr;
    if (gCallocSize.load() != 0 && count * size == gCallocSize.load()) {
        if (gCallocSuccesses.fetch_sub(1) == 0) {
            gCallocSize.store(0);
            return nullptr;
        }
    }
    return __real_calloc(count, size);
}

extern "C" void* __wrap_malloc(size_t size) {
    const size_t limit = gMallocLimit.load();
    if (limit != 0 && size >= limit) return nullptr;
    return __real_malloc(size);
}

namespace vesk::test {

void failCallocOfSize(size_t size, int successes) {
    gCallocSuccesses.store(successes);
    gCallocSize.store(size);
}

LargeMallocFails::LargeMallocFails(size_t atLeast) {
    gMallocLimit.store(atLeast);
}

LargeMallocFails::~LargeMallocFails() {
    gMallocLimit.store(0);
}

}  // namespace vesk::test
