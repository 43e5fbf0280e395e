#include "CountingAllocator.h"

#include <stdlib.h>

#include <atomic>
#include <cstddef>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VESK_SANITIZED_ALLOCATOR 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VESK_SANITIZED_ALLOCATOR 1
#endif
#endif

namespace {
std::atomic<long> gAllocations{0};
}  // namespace

long vesk::test::allocationCount() {
    return gAllocations.load();
}

#ifdef VESK_SANITIZED_ALLOCATOR

#include <sanitizer/allocator_interface.h>

namespace {

void onAllocation(const volatile void*, size_t) {
    ++gAllocations;
}

void onFree(const volatile void*) {}

[[gnu::constructor]] void installHooks() {
    __sanitizer_install_malloc_and_free_hooks(onAllocation, onFree);
}

}  // namespace

#else

// Every other form of operator new and delete uses these two.
void* operator new(std::size_t size) {
    ++gAllocations;
    if (void* p = malloc(size == 0 ? 1 : size)) return p;
    throw std::bad_alloc();
}

void operator delete(void* p) noexcept {
    free(p);
}

void operator delete(void* p, std::size_t) noexcept {
    free(p);
}

#endif
