#include "platform/Shell.h"

#include "platform/WindowsApi.h"

#include <shellapi.h>

namespace vardel {

namespace {

const char* VerbText(ShellVerb verb) {
    switch (verb) {
        case ShellVerb::Explore: return "explore";
        case ShellVerb::Find: return "find";
        default: return "open";
    }
}

class WindowsShell : public Shell {
  public:
    std::vector<std::string> ParameterPieces(const std::string& parameters) override { return {parameters}; }

    // ShellExecuteA itself shows no message on failure. Its result is no handle but a number: above 32 is success.
    bool Execute(ShellVerb verb, const std::string& file, const std::vector<std::string>& pieces) override {
        if (file.empty()) return false;  // an empty name would open the current folder
        constexpr INT_PTR kGreatestError = 32;
        std::string parameters;
        for (const std::string& piece : pieces) parameters += (parameters.empty() ? "" : " ") + piece;
        const HINSTANCE result = ShellExecuteA(nullptr, VerbText(verb), file.c_str(),
                                               parameters.empty() ? nullptr : parameters.c_str(), nullptr, SW_SHOW);
        return reinterpret_cast<INT_PTR>(result) > kGreatestError;
    }
};

}  // namespace

Shell& SystemShell() {
    static WindowsShell shell;
    return shell;
}

}  // namespace vardel
