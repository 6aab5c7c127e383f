// post_command NUMBER: gives the running vardelwatch.exe one of its commands (40004 ends it), as its tray menu does.
// For the start script and the tests. Exit code 1 where no such program runs.
#include <cstdio>
#include <cstdlib>

#include "frame/MainWindow.h"
#include "platform/WindowsApi.h"

int main(int count, char** words) {
    const unsigned long command = count == 2 ? std::strtoul(words[1], nullptr, 10) : 0;
    if (command == 0 || command > 0xffff) {
        std::fprintf(stderr, "usage: post_command NUMBER\n");
        return 2;
    }
    const HWND window = FindWindowA(vardel::kMainWindowClass, vardel::kMainWindowTitle);
    return window && PostMessageA(window, WM_COMMAND, command, 0) ? EXIT_SUCCESS : EXIT_FAILURE;
}
