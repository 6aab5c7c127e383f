// Application base: keeps what the program entry was given and runs the message loop.
#pragma once

#include <string>

#include "platform/Services.h"

namespace vardel {

class TcWinMain {
  public:
    explicit TcWinMain(ProcessServices& process) : process_(process) {}
    virtual ~TcWinMain() = default;
    virtual u32 MainRun() = 0;
    // The calling thread's message loop; returns when it ends.
    virtual bool RunMessageLoop();

    bool MainInit(ModuleHandle instance, ModuleHandle previous, const char* commandLine, int showState);
    char* GetCmdLine() { return commandLine_.data(); }
    ModuleHandle GetInstance() const { return instance_; }

    // True if another process with this name is running; a false answer claims the name until this process ends.
    bool CheckRunningInstance(const char* name) { return process_.ClaimName(name); }

  private:
    ProcessServices& process_;
    ModuleHandle instance_ = nullptr;
    std::string commandLine_;
};

}  // namespace vardel
