/*
 * veskdm: drives the device manager on the host, as a passthrough HIDL host would, and
 * inspects the device root (properties, boot-loader environment, timings). The commands are a
 * library (Veskdm.h); this file gives them the process's streams, root and exit status.
 */
#include <iostream>
#include <string>
#include <vector>

#include "Veskdm.h"

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    veskdm::Streams streams{std::cin, std::cout, std::cerr};
    int status = veskdm::runVeskdm(args, streams, veskdm::rootFromEnvironment());
    std::cout.flush();
    return status;
}
