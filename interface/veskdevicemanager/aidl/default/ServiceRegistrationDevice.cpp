// The board's side of the service's registration: the service manager and the binder thread
// pool.
#include <android/binder_manager.h>
#include <android/binder_process.h>
#include <android/log.h>

#include "ServiceRegistration.h"

namespace vesk::platform {

namespace {
constexpr char kTag[] = "vesk.hardware.veskdevicemanager-service";
}  // namespace

int serveService(AIBinder* service, const char* instance, uint32_t threads) {
    // The pool's first thread and this one, which joins the pool below, serve from the start; the
    // binder driver starts the others as calls come.
    ABinderProcess_setThreadPoolMaxThreadCount(threads > 2 ? threads - 2 : 0);
    ABinderProcess_startThreadPool();
    binder_exception_t status = AServiceManager_addService(service, instance);
    if (status != EX_NONE) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "cannot register %s: exception %d", instance,
                            status);
        return 1;
    }
    ABinderProcess_joinThreadPool();
    return 1;  // the pool is never left
}

}  // namespace vesk::platform
