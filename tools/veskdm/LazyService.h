/*
 * The service object of a run, fetched from the implementation library when the first call is
 * ready to be made (so that bad input loads nothing), in the run's device root.
 */
#pragma once

#include "Context.h"
#include "Errors.h"
#include "ImplLoader.h"
#include "MethodBinder.h"

namespace veskdm {

class LazyService {
  public:
    explicit LazyService(Context& context) : mContext(context) {}

    IVeskDeviceManager& get() {
        if (mService == nullptr) {
            mContext.useRoot();
            try {
                mService = fetchDeviceManager(implLibraryPath());
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
