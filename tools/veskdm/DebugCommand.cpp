/*
 * veskdm debug [SECTION...]: what `lshal debug` prints of the service on a board, here for the
 * device root: the service's IBase::debug, written into a file this command then prints.
 */
#include <cutils/native_handle.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "LazyService.h"
#include "ServiceProcess.h"

namespace veskdm {
namespace {

using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

// The descriptor the service writes to, closed with its handle.
class DebugFile {
  public:
    DebugFile()
        : mFd(memfd_create("veskdm-debug", MFD_CLOEXEC)), mHandle(native_handle_create(1, 0)) {
        if (mFd < 0 || mHandle == nullptr) {
            throw CommandError(std::string("debug: no file for the service's text: ") +
                               strerror(errno));
        }
        mHandle->data[0] = mFd;
    }
    ~DebugFile() {
        if (mHandle != nullptr) native_handle_delete(mHandle);
        if (mFd >= 0) close(mFd);
    }
    DebugFile(const DebugFile&) = delete;
    DebugFile& operator=(const DebugFile&) = delete;

    const native_handle_t* handle() const { return mHandle; }

    std::string text() const {
        std::string all;
        char buffer[4096];
        off_t offset = 0;
        ssize_t count;
        while ((count = pread(mFd, buffer, sizeof(buffer), offset)) > 0) {
            all.append(buffer, static_cast<size_t>(count));
            offset += count;
        }
        return all;
    }

  private:
    int mFd;
    native_handle_t* mHandle;
};

// The sections of the service's debug text.
constexpr const char* kSections[] = {"product", "mode", "env", "log"};
constexpr char kUsage[] = "veskdm debug [product] [mode] [env] [log]";

void checkSections(const std::vector<std::string>& sections) {
    for (const std::string& section : sections) {
        bool known = false;
        for (const char* name : kSections) known = known || section == name;
        if (!known) {
            throw UsageError("debug: unknown section \"" + section + "\"; usage: " + kUsage);
        }
    }
}

void printDebug(Context& context, const std::vector<std::string>& sections) {
    context.useExistingRoot();  // showing the state changes nothing
    LazyService service(context);
    IVeskDeviceManager& manager = service.get();
    DebugFile file;
    hidl_vec<hidl_string> options(sections.size());
    for (size_t i = 0; i < sections.size(); ++i) options[i] = sections[i];
    try {
        auto result = manager.debug(hidl_handle(file.handle()), options);
        if (!result.isOk()) throw CommandError("debug: transport error: " + result.description());
    } catch (const TransportError& error) {
        throw CommandError(std::string("debug: ") + error.what());
    }
    std::string text = file.text();
    // The service answers options it does not know with its one usage line: bad input here.
    if (text.rfind("usage: ", 0) == 0 && text.find('\n') == text.size() - 1) {
        text.pop_back();
        throw UsageError("debug: " + text);
    }
    context.out << text;
}

}  // namespace

void addDebugCommand(CLI::App& app, Context& context) {
    auto sections = std::make_shared<std::vector<std::string>>();
    auto* debug = app.add_subcommand("debug", "the service's state, as lshal debug shows it");
    debug->footer("SECTIONs: product, mode, env, log (all of them when none is named).");
    debug->add_option("SECTION", *sections, "sections to print");
    addViaOption(*debug, context);
    debug->callback([sections, &context] {
        checkSections(*sections);
        runInServiceProcess(context, [sections](Context& child) { printDebug(child, *sections); });
    });
}

}  // namespace veskdm
