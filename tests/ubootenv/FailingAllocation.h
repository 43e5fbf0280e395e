/*
 * calloc() and malloc() of the code linked into the test program go through these wrappers (the
 * program is linked with --wrap=calloc and --wrap=malloc), so that a test can make an allocation
 * fail for real, the same way under an emulator as on the build machine (where a memory limit
 * of the process would do, but an emulator keeps such limits to itself).
 */
#pragma once

#include <stddef.h>

namespace vesk::test {

// After `successes` more calloc() calls of `size` bytes succeed, the next one returns null;
// then calloc() behaves again.
void failCallocOfSize(size_t size, int successes);

// While one lives, every malloc() or calloc() of `atLeast` bytes or more returns null, as in a
// process that has less memory than that left.
class LargeMallocFails {
  public:
    explicit LargeMallocFails(size_t atLeast);
    ~LargeMallocFails();
    LargeMallocFails(const LargeMallocFails&) = delete;
    LargeMallocFails& operator=(const LargeMallocFails&) = delete;
};

}  // namespace vesk::test
