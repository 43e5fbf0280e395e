/*
 * The service's calls of one command run in a child process of the run. The service ends its
 * process on some inputs, as it does on a board (where init then restarts it); here that ends
 * the child alone, and the run says in one line how it ended.
 */
#pragma once

#include <functional>

#include "Context.h"

namespace veskdm {

// Runs `body` in a child process, with a context of the same run whose output and error reach
// this run's streams through pipes as they come (its input is the run's own). A failure that
// `body` throws (Errors.h) is reported by the child; its status becomes this run's (ExitStatus).
// A child that ends in any other way is one CommandError here: "the service aborted: MESSAGE"
// (MESSAGE is the last line the process wrote to its standard error on its way out), preceded by
// the step the child was at (Context::markStep) when it had marked one.
void runInServiceProcess(Context& context, const std::function<void(Context& child)>& body);

}  // namespace veskdm
