#include "foundation/TcWinMain.h"

#include "platform/MessageLoop.h"

namespace vardel {

bool TcWinMain::MainInit(ModuleHandle instance, ModuleHandle, const char* commandLine, int) {
    instance_ = instance;
    commandLine_ = commandLine ? commandLine : "";
    return true;
}

bool TcWinMain::RunMessageLoop() {
    return RunSystemMessageLoop();
}

}  // namespace vardel
