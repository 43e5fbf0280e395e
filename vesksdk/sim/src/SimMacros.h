/*
 * One-line definitions of the many board functions that only store a state and read it back.
 */
#pragma once

#include "BoardState.h"
#include "SimCall.h"

// int fn(type value): stores `value` under `key`; 0.
#define VESK_SIM_SETTER(fn, key, type)                                        \
    int fn(type value) {                                                      \
        return vesk::sim::SimCall(#fn, {value}).run([&] {                     \
            return vesk::sim::board().setValue(key, static_cast<int>(value)); \
        });                                                                   \
    }

// int fn(void): the state stored under `key` (0 until set).
#define VESK_SIM_GETTER(fn, key)                                                              \
    int fn(void) {                                                                            \
        return vesk::sim::SimCall(#fn, {}).run([] { return vesk::sim::board().value(key); }); \
    }

// int fn(indexType index, type value): one member of an indexed state.
#define VESK_SIM_INDEXED_SETTER(fn, key, indexType, type)                      \
    int fn(indexType index, type value) {                                      \
        return vesk::sim::SimCall(#fn, {index, value}).run([&] {               \
            return vesk::sim::board().setValue(vesk::sim::indexed(key, index), \
                                               static_cast<int>(value));       \
        });                                                                    \
    }

// int fn(indexType index): one member of an indexed state (0 until set).
#define VESK_SIM_INDEXED_GETTER(fn, key, indexType)                          \
    int fn(indexType index) {                                                \
        return vesk::sim::SimCall(#fn, {index}).run([&] {                    \
            return vesk::sim::board().value(vesk::sim::indexed(key, index)); \
        });                                                                  \
    }

// int fn(void): an action the board always carries out; `result`.
#define VESK_SIM_ACTION(fn, result)                                    \
    int fn(void) {                                                     \
        return vesk::sim::SimCall(#fn, {}).run([] { return result; }); \
    }
