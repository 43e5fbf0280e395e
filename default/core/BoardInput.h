/*
 * A client's vector handed to a board function that reads a fixed number of elements from it.
 * A vector that holds fewer is copied into a zeroed buffer of that many elements, so that the
 * board never reads past the client's data into the service's memory. An empty vector still
 * passes its own pointer (which may be null), and a vector long enough passes its own data
 * unchanged.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "CoreTypes.h"

namespace vesk::hardware::veskdevicemanager::implementation {

template <typename T>
class BoardInput {
  public:
    BoardInput(core::InputView<T> client, size_t boardReads) : mData(client.data()) {
        if (client.size() == 0 || client.size() >= boardReads) return;
        mPadded.assign(boardReads, T());
        std::copy(client.begin(), client.end(), mPadded.begin());
        mData = mPadded.data();
    }
    BoardInput(const BoardInput&) = delete;
    BoardInput& operator=(const BoardInput&) = delete;

    const T* data() const { return mData; }

  private:
    std::vector<T> mPadded;
    const T* mData;
};

}  // namespace vesk::hardware::veskdevicemanager::implementation
