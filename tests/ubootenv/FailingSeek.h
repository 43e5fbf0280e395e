/*
 * lseek() of the code linked into the test program goes through this wrapper (the program is
 * linked with --wrap=lseek), so that a test can give the store a device that cannot seek, as a
 * pipe-like device would be, while the device itself is a plain file.
 */
#pragma once

namespace vesk::test {

// While one lives, every lseek() fails with ESPIPE; reads and writes go on where the file's
// position is.
class SeeksFail {
  public:
    SeeksFail();
    ~SeeksFail();
    SeeksFail(const SeeksFail&) = delete;
    SeeksFail& operator=(const SeeksFail&) = delete;
};

}  // namespace vesk::test
