// A plugin whose block, texts and answers are the input: the host must take no byte from outside of them.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "plugins/PluginCalls.h"
#include "plugins/PluginStates.h"

namespace vardel {
namespace {

// What isn't there reads as zero.
class Input {
  public:
    Input(const u8* data, std::size_t size) : at_(data), left_(size) {}
    bool IsEmpty() const { return left_ == 0; }
    void Take(void* target, std::size_t size) {
        std::memset(target, 0, size);
        const std::size_t taken = size < left_ ? size : left_;
        if (taken) std::memcpy(target, at_, taken);
        at_ += taken;
        left_ -= taken;
    }
    template <class T>
    T Take() {
        T value;
        Take(&value, sizeof value);
        return value;
    }

  private:
    const u8* at_;
    std::size_t left_;
};

Input* answers = nullptr;
PluginInfo* block = nullptr;

// One byte says how much of the text field is filled, the rest is the answer.
uint32_t PLUGIN_CALL Answer(PluginInfo* info) {
    if (answers->IsEmpty()) return 0;
    if (info->type == PLUGIN_TYPE_COLUMNS && info->data) {
        auto& call = *static_cast<PluginColumnCall*>(info->data);
        call.format = answers->Take<i32>();
        call.width = answers->Take<i32>();
        if (answers->Take<u8>() & 1) call.column = answers->Take<i32>();
        const std::size_t length = answers->Take<u16>() % (sizeof call.text + 1);
        answers->Take(call.text, length);
        call.more = answers->Take<u8>();
        call.order = answers->Take<i32>();
    }
    const u8 result = answers->Take<u8>();
    if (result == 0xff) throw 1;
    return result;
}

PluginInfo* GiveBlock() {
    return block;
}

class OneModule : public Modules {
  public:
    std::vector<FolderEntry> List(const std::string&, const char*) override { return {{"plugin.so", false}}; }
    ModuleHandle Load(const char*) override { return reinterpret_cast<ModuleHandle>(this); }
    void* Find(ModuleHandle, const char*) override { return reinterpret_cast<void*>(&GiveBlock); }
    void Free(ModuleHandle) override {}
    const char* Ending() const override { return ".so"; }
};

// A text of the most that the host reads, terminated only where the input has a zero.
std::unique_ptr<char[]> Text(Input& input) {
    auto text = std::make_unique<char[]>(600);
    std::memset(text.get(), 'x', 600);
    input.Take(text.get(), input.Take<u16>() % 601);
    return text;
}

void Check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void CallOnEveryPath(LoadedPlugin& plugin) {
    int window = 0;
    const PluginHostText host = HostText("10.0.0.5", "02:00:00:00:00:05", "nas");
    ConfigurePlugin(plugin, &window);
    AboutPlugin(plugin, &window);
    RunPluginOnHost(plugin, &window, host);
    const std::vector<PluginColumn> columns = DefinePluginColumns(plugin);
    Check(columns.size() <= 99, "more columns than there can be");
    for (const PluginColumn& column : columns)
        Check(!column.title.empty() && column.title.size() <= 300, "a title of another length");
    Check(PluginCellText(plugin, 1, host).size() <= 300, "a cell longer than its field");
    ComparePluginHosts(plugin, 1, 1, host, host);
    Check(!plugin.own->window && !plugin.own->data && plugin.own->dataCount == 0,
          "the fields were not cleared");
    PluginNotifyItem item{};
    NotifyPlugin(plugin, item);
}

void Run(Input input) {
    PluginInfo ownBlock{};
    const u8 shape = input.Take<u8>();
    ownBlock.size = shape & 1 ? input.Take<u32>() : static_cast<u32>(sizeof(PluginInfo));
    ownBlock.type = shape & 2 ? input.Take<i32>() : static_cast<i32>(PLUGIN_TYPE_COLUMNS);
    const auto name = Text(input), description = Text(input);
    ownBlock.name = shape & 4 ? nullptr : name.get();
    ownBlock.description = shape & 8 ? nullptr : description.get();
    ownBlock.Init = ownBlock.Exit = ownBlock.Configure = ownBlock.Run = ownBlock.About = &Answer;
    block = &ownBlock;
    answers = &input;
    OneModule modules;
    PluginTable table(modules, SystemFolders());
    table.LoadPluginFolder("/plugins");
    LoadedPlugin* plugin = table.FirstPlugin(0);
    Check((plugin != nullptr) == (ownBlock.size == sizeof(PluginInfo)),
          "taken by another rule than its size");
    if (!plugin) return;
    Check(plugin->id.GetLength() == 32, "an identity of another length");
    PluginStateTable states;
    MergePluginStates(table, states);
    Check(states.Count() == 1, "no entry");
    table.SetPluginLanguage(9);
    CallOnEveryPath(*plugin);
}

}  // namespace
}  // namespace vardel

extern "C" int LLVMFuzzerTestOneInput(const vardel::u8* data, std::size_t size) {
    vardel::Run(vardel::Input(data, size));
    return 0;
}
