# 32-bit ARM (armhf) cross build: a 64-bit device builds the -impl library for its 32-bit ABI
# too, for the 32-bit processes that load it.
set(VESK_CROSS_TRIPLE arm-linux-gnueabihf)
set(VESK_CROSS_ARCH armhf)
set(VESK_CROSS_PROCESSOR arm)
set(VESK_CROSS_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
