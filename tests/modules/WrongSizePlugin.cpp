// A plugin for another layout of the block.
#include "plugins/plugin_interface.h"

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block{};
    block.size = sizeof block - 4;
    block.name = block.description = "";
    block.type = PLUGIN_TYPE_VIEW;
    return &block;
}
