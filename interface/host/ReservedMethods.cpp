/*
 * The bodies of the base interface's reserved methods that hidl-gen's generated sources hold on
 * the device (the interface package's library, and libhidlbase for IBase itself). The host
 * builds only the generated headers, so the same bodies are given here: debug() prints nothing
 * unless an implementation overrides it; getHashChain() gives the hashes of the .hal files the
 * build was made from, most derived interface first.
 */
#include <android/hidl/base/1.0/IBase.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceCallback.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <cstdint>
#include <initializer_list>

#include "InterfaceHashes.h"

using ::android::hardware::hidl_array;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

using Hash = hidl_array<uint8_t, 32>;
static_assert(sizeof(VESK_HASH_IBASE) == 65 && sizeof(VESK_HASH_IVESKDEVICEMANAGER) == 65 &&
                      sizeof(VESK_HASH_IVESKDEVICECALLBACK) == 65,
              "a hash is 64 hex digits");

int hexDigit(char c) {
    return c <= '9' ? c - '0' : c - 'a' + 10;
}

// The 32 bytes of a hash written as 64 lower-case hex digits.
Hash hashOf(const char* hex) {
    Hash hash;
    for (size_t i = 0; i < 32; ++i) {
        hash[i] = static_cast<uint8_t>(hexDigit(hex[2 * i]) * 16 + hexDigit(hex[2 * i + 1]));
    }
    return hash;
}

hidl_vec<Hash> chainOf(std::initializer_list<const char*> hexes) {
    hidl_vec<Hash> chain;
    chain.resize(hexes.size());
    size_t i = 0;
    for (const char* hex : hexes) chain[i++] = hashOf(hex);
    return chain;
}

}  // namespace

namespace android::hidl::base::V1_0 {

Return<void> IBase::debug(const hidl_handle& /*fd*/, const hidl_vec<hidl_string>& /*options*/) {
    return Void();
}

// The callback is taken by value, as the generated header declares it.
Return<void> IBase::getHashChain(getHashChain_cb hidlCallback) {  // NOLINT(performance-*)
    hidlCallback(chainOf({VESK_HASH_IBASE}));
    return Void();
}

}  // namespace android::hidl::base::V1_0

namespace vesk::hardware::veskdevicemanager::V1_0 {

Return<void> IVeskDeviceManager::debug(const hidl_handle& /*fd*/,
                                       const hidl_vec<hidl_string>& /*options*/) {
    return Void();
}

Return<void> IVeskDeviceManager::getHashChain(getHashChain_cb hidlCallback) {
    hidlCallback(chainOf({VESK_HASH_IVESKDEVICEMANAGER, VESK_HASH_IBASE}));
    return Void();
}

Return<void> IVeskDeviceCallback::debug(const hidl_handle& /*fd*/,
                                        const hidl_vec<hidl_string>& /*options*/) {
    return Void();
}

Return<void> IVeskDeviceCallback::getHashChain(getHashChain_cb hidlCallback) {
    hidlCallback(chainOf({VESK_HASH_IVESKDEVICECALLBACK, VESK_HASH_IBASE}));
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::V1_0
