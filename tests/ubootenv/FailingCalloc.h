/*
 * calloc() of the code linked into the test program goes through this wrapper (the program is
 * linked with --wrap=calloc), so that a test can make one allocation fail for real.
 */
#pragma once

#include <stddef.h>

namespace vesk::test {

// After `successes` more calloc() calls of `size` bytes succeed, the next one returns null;
// then calloc() behaves again.
void failCallocOfSize(size_t size, int successes);

}  // namespace vesk::test
