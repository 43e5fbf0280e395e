/*
 * One-line definitions of the many board functions that only store a state and read it back.
 */
#pragma once

#include "BoardState.h"
#include "SimCall.h"

// int fn(type value): stores `value` under `key`; 0, or -1 for a value the board does not
// accept (StateRanges.cpp).
#define VESK_SIM_SETTER(fn, key, type)                                              \
    int fn(type value) {                                                            \
        return vesk::sim::SimCall(#fn, {value}).run([&] {                           \
            return vesk::sim::board().setValue(key, static_cast<long long>(value)); \
        });                                                                         \
    }

// int fn(void): the state stored under `key` (0 until set).
#define VESK_SIM_GETTER(fn, key)                                                              \
    int fn(void) {                                                                            \
        return vesk::sim::SimCall(#fn, {}).run([] { return vesk::sim::board().value(key); }); \
    }

// int fn(indexType index, type value): one member of an indexed state; -1 for an index or
// value the board does not have.
#define VESK_SIM_INDEXED_SETTER(fn, key, indexType, type)                                 \
    int fn(indexType index, type value) {                                                 \
        return vesk::sim::SimCall(#fn, {index, value}).run([&] {                          \
            return vesk::sim::board().setIndexedValue(key, static_cast<long long>(index), \
                                                      static_cast<long long>(value));     \
        });                                                                               \
    }

// int fn(indexType index): one member of an indexed state (0 until set; -1 for an index the
// board does not have).
#define VESK_SIM_INDEXED_GETTER(fn, key, indexType)                                     \
    int fn(indexType index) {                                                           \
        return vesk::sim::SimCall(#fn, {index}).run([&] {                               \
            return vesk::sim::board().indexedValue(key, static_cast<long long>(index)); \
        });                                                                             \
    }

// int fn(void): an action the board always carries out; `result`.
#define VESK_SIM_ACTION(fn, result)                                    \
    int fn(void) {                                                     \
        return vesk::sim::SimCall(#fn, {}).run([] { return result; }); \
    }
