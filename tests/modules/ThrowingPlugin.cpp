// A plugin that throws wherever it is called.
#include <stdexcept>

#include "plugins/plugin_interface.h"

namespace {

uint32_t PLUGIN_CALL Throw(PluginInfo*) {
    throw std::runtime_error("thrown by a plugin");
}

PluginInfo MakeBlock() {
    PluginInfo block{};
    block.size = sizeof block;
    block.name = "Throwing plugin";
    block.description = "Throws wherever it is called";
    block.type = PLUGIN_TYPE_VIEW;
    block.Init = block.Exit = block.Configure = block.Run = block.About = Throw;
    return block;
}

}  // namespace

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block = MakeBlock();
    return &block;
}
