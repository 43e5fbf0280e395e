/*
 * Counts the program's allocations: through the sanitizer runtime's allocation hook when the
 * tests are built with a sanitizer (its runtime brings its own operator new), else by replacing
 * the global operator new.
 */
#pragma once

namespace vesk::test {

// Allocations since the program started.
long allocationCount();

}  // namespace vesk::test
