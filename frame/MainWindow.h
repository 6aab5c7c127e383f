// What others know of the desktop program's main window: how to find it, and the command that ends the program.
#pragma once

namespace vardel {

constexpr char kMainWindowClass[] = "Vardel - MainFrame";
constexpr char kMainWindowTitle[] = "Vardelwatch";

// Command of the tray menu, and of whoever steers the program by messages.
constexpr unsigned kExitCommand = 40004;

}  // namespace vardel
