/*
 * The service across processes (--via aidl): the stable-AIDL service program listening on the
 * device root's socket, reached over the platform's RPC binder and seen through the HIDL
 * interface (aidl/AidlDeviceManagerClient.h), so that every command that calls the service
 * works with either. A build without the platform's binder has no such client and says so.
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <string>

namespace veskdm {

// How long a connection may take before the service counts as not answering.
inline constexpr unsigned kAidlConnectTimeoutMs = 5000;

// The service listening at socketPath, for as long as the object lives (its session ends with
// it); the platform's own log lines go to this process's log from then on. Throws LoadError
// naming what is at the path instead (no socket, not a socket, a dead service's socket, no RPC
// binder server, no answer in time, another interface).
::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> connectAidlService(
        const std::string& socketPath);

}  // namespace veskdm
