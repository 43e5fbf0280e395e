/*
 * An MTD device emulated on the open file: MEMGETINFO reports the configured sizes, MEMERASE
 * sets the erased bytes to 0xFF as flash does. Installed for the object's lifetime.
 */
#pragma once

#include <mtd/mtd-user.h>

#include <vector>

#include "vesk/host/Seams.h"

namespace vesk::test {

class FileMtd : public vesk::host::MtdEmulation {
  public:
    FileMtd(uint32_t size, uint32_t eraseSize);
    ~FileMtd() override;

    int getInfo(int fd, mtd_info_user* info) override;
    int erase(int fd, const erase_info_user* erase) override;

    // The first `count` MEMGETINFO calls fail with `result`.
    void failGetInfo(int count, int result = -1) {
        mGetInfoFailures = count;
        mGetInfoResult = result;
    }
    // MEMERASE fails with `result`.
    void failErase(int result) { mEraseResult = result; }
    // MEMERASE succeeds without touching the device (for devices that cannot be written at an
    // offset, such as a FIFO).
    void eraseWithoutWriting() { mEraseWrites = false; }

    int getInfoCalls() const { return mGetInfoCalls; }
    const std::vector<erase_info_user>& erases() const { return mErases; }

  private:
    uint32_t mSize;
    uint32_t mEraseSize;
    int mGetInfoCalls = 0;
    int mGetInfoFailures = 0;
    int mGetInfoResult = -1;
    int mEraseResult = 0;
    bool mEraseWrites = true;
    std::vector<erase_info_user> mErases;
};

}  // namespace vesk::test
