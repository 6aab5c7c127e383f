// Loads packet.dll by name, asks it for the MAC address of each device named on the command line and prints
// one line a device: the address, or "none". The first line is the library's version. Exit 1 if an operation
// is missing.

#include <array>
#include <cstdio>
#include <cstring>

#include "platform/WindowsApi.h"

namespace {

using VersionOperation = char* (*)();
using OpenOperation = void* (*)(char*);
using RequestOperation = unsigned char (*)(void*, unsigned char, void*);
using CloseOperation = void (*)(void*);

template <typename Operation>
Operation Find(HMODULE module, const char* name) {
    Operation operation = nullptr;
    const FARPROC address = GetProcAddress(module, name);
    static_assert(sizeof operation == sizeof address);
    std::memcpy(&operation, &address, sizeof operation);
    return operation;
}

}  // namespace

int main(int count, char** arguments) {
    const HMODULE module = LoadLibraryA("packet.dll");
    if (module == nullptr) {
        std::printf("packet.dll could not be loaded\n");
        return 1;
    }
    const auto getVersion = Find<VersionOperation>(module, "PacketGetVersion");
    const auto openAdapter = Find<OpenOperation>(module, "PacketOpenAdapter");
    const auto request = Find<RequestOperation>(module, "PacketRequest");
    const auto closeAdapter = Find<CloseOperation>(module, "PacketCloseAdapter");
    if (getVersion == nullptr || openAdapter == nullptr || request == nullptr || closeAdapter == nullptr) {
        std::printf("an operation is missing\n");
        return 1;
    }
    std::printf("%s\n", getVersion());
    for (int index = 1; index < count; ++index) {
        // Object 0x01010102 and the length 6, both little-endian; then the data and four spare bytes.
        std::array<unsigned char, 18> block{0x02, 0x01, 0x01, 0x01, 6};
        void* adapter = openAdapter(arguments[index]);
        if (adapter != nullptr && request(adapter, 0, block.data()) != 0) {
            std::printf("%02x:%02x:%02x:%02x:%02x:%02x\n", block[8], block[9], block[10], block[11],
                        block[12], block[13]);
        } else {
            std::printf("none\n");
        }
        closeAdapter(adapter);
    }
    return 0;
}
