#include "Errors.h"

#include <new>

namespace veskdm {

int statusOf(const std::function<void()>& body, std::ostream& err) {
    try {
        body();
    } catch (const UsageError& e) {
        err << "veskdm: " << e.what() << "\n";
        return 2;
    } catch (const CommandError& e) {
        err << "veskdm: " << e.what() << "\n";
        return 1;
    } catch (const ExitStatus& e) {
        return e.status();
    } catch (const std::bad_alloc&) {
        err << "veskdm: out of memory: a size in the command cannot be allocated\n";
        return 1;
    }
    return 0;
}

}  // namespace veskdm
