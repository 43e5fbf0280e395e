#include "FileMtd.h"

#include <unistd.h>

#include <string>

namespace vesk::test {

FileMtd::FileMtd(uint32_t size, uint32_t eraseSize) : mSize(size), mEraseSize(eraseSize) {
    vesk::host::setMtdEmulation(this);
}

FileMtd::~FileMtd() {
    vesk::host::setMtdEmulation(nullptr);
}

int FileMtd::getInfo(int /*fd*/, mtd_info_user* info) {
    ++mGetInfoCalls;
    if (mGetInfoFailures > 0) {
        --mGetInfoFailures;
        return mGetInfoResult;
    }
    info->type = MTD_NANDFLASH;
    info->flags = MTD_CAP_NANDFLASH;
    info->size = mSize;
    info->erasesize = mEraseSize;
    info->writesize = 2048;
    info->oobsize = 64;
    return 0;
}

int FileMtd::erase(int fd, const erase_info_user* erase) {
    mErases.push_back(*erase);
    if (mEraseResult != 0) return mEraseResult;
    if (!mEraseWrites) return 0;
    std::string erased(erase->length, '\xff');
    ssize_t written = pwrite(fd, erased.data(), erased.size(), erase->start);
    return written == static_cast<ssize_t>(erased.size()) ? 0 : -1;
}

}  // namespace vesk::test
