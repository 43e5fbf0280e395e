#include "Commands.h"

namespace veskdm {

const std::vector<AddCommand>& commandList() {
    static const std::vector<AddCommand> kCommands = {
            addPropCommand,  addTimingCommand, addEnvCommand,   addMethodsCommand, addCallCommand,
            addShellCommand, addBoardCommand,  addDebugCommand, addServeCommand,
    };
    return kCommands;
}

}  // namespace veskdm
