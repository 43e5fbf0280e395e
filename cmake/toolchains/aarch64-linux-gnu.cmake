# arm64 (AArch64) cross build: the board's own ABI.
set(VESK_CROSS_TRIPLE aarch64-linux-gnu)
set(VESK_CROSS_ARCH arm64)
set(VESK_CROSS_PROCESSOR aarch64)
set(VESK_CROSS_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
