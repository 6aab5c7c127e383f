// A plugin that counts its calls and ends the program when one comes outside of its life. Built once a type.
#include <atomic>
#include <cstdlib>

#include "plugins/plugin_interface.h"

namespace {

std::atomic<bool> alive{false};
std::atomic<unsigned> inside{0};

uint32_t PLUGIN_CALL Init(PluginInfo*) {
    if (alive.exchange(true)) std::abort();
    return 1;
}

uint32_t PLUGIN_CALL Exit(PluginInfo*) {
    if (!alive.exchange(false) || inside != 0) std::abort();
    return 1;
}

uint32_t PLUGIN_CALL Run(PluginInfo* info) {
    ++inside;
    if (!alive || info->dataCount != 1 || !info->data) std::abort();
    if (info->type == PLUGIN_TYPE_COLUMNS) static_cast<PluginColumnCall*>(info->data)->text[0] = 't';
    __atomic_load_n(&info->language, __ATOMIC_RELAXED);
    --inside;
    return 1;
}

PluginInfo MakeBlock() {
    PluginInfo block{};
    block.size = sizeof block;
    block.name = VARDEL_COUNTING_NAME;
    block.description = "";
    block.type = VARDEL_COUNTING_TYPE;
    block.Init = Init;
    block.Exit = Exit;
    block.Run = Run;
    return block;
}

}  // namespace

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block = MakeBlock();
    return &block;
}
