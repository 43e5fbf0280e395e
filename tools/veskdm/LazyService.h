/*
 * The service object of a run, had when the first call is ready to be made (so that bad input
 * loads nothing): fetched from the implementation library in the run's device root, or, with
 * --via aidl, the AIDL service listening on that root's socket.
 */
#pragma once

#include "AidlService.h"
#include "Context.h"
#include "Errors.h"
#include "ImplLoader.h"
#include "MethodBinder.h"
#include "vesk/host/DeviceRoot.h"

namespace veskdm {

class LazyService {
  public:
    explicit LazyService(Context& context) : mContext(context) {}

    IVeskDeviceManager& get() {
        if (mService == nullptr) {
            try {
                if (mContext.options.via == "aidl") {
                    mService = connectAidlService(vesk::host::pathBelowRoot(
                            mContext.rootPath(), vesk::host::kServiceSocket));
                } else {
                    mContext.useRoot();
                    mService = fetchDeviceManager(implLibraryPath());
                }
            } catch (const LoadError& error) {
                throw CommandError(error.what());
            }
        }
        return *mService;
    }

  private:
    Context& mContext;
    ::android::sp<IVeskDeviceManager> mService;
};

}  // namespace veskdm
