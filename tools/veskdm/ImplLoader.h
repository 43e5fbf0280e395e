/*
 * Loads the implementation library as a passthrough HIDL host does: dlopen, then the exported
 * factory HIDL_FETCH_IVeskDeviceManager.
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <stdexcept>
#include <string>

namespace veskdm {

// The library or its factory could not be had.
class LoadError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

inline constexpr char kImplLibraryName[] = "vesk.hardware.veskdevicemanager@1.0-impl.so";
inline constexpr char kImplLibraryVariable[] = "VESK_IMPL_LIB";

// $VESK_IMPL_LIB when set and not empty, else ../lib/<kImplLibraryName> beside the running
// program (bin/ and lib/ of the build tree or of an installation).
std::string implLibraryPath();

// A file beside the running program's folder: `relative` to it (bin/ of the build tree or of an
// installation).
std::string besideProgram(const std::string& relative);

// Loads the library (it stays loaded for the life of the process, as in a passthrough host),
// fetches one service object of that instance name and holds it by a strong pointer.
::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> fetchDeviceManager(
        const std::string& libraryPath, const char* instance = "default");

}  // namespace veskdm
