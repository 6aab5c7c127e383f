#include "frame/OpenWindows.h"

#include <span>

namespace vardel {

namespace {

constexpr ProgramWindow kCommandOrder[] = {ProgramWindow::Settings, ProgramWindow::Resources, ProgramWindow::View,
                                           ProgramWindow::EventLog, ProgramWindow::SysLog,    ProgramWindow::Updates};
constexpr ProgramWindow kClickOrder[] = {ProgramWindow::Settings, ProgramWindow::Resources, ProgramWindow::EventLog,
                                         ProgramWindow::SysLog,   ProgramWindow::Updates,   ProgramWindow::View};

WindowDeed FirstOpen(std::span<const ProgramWindow> order, WindowSet open, ProgramWindow otherwise) {
    for (const ProgramWindow window : order)
        if (open.Has(window)) return {WindowDeed::Kind::BringToFront, window};
    return {WindowDeed::Kind::Open, otherwise};
}

}  // namespace

WindowDeed OnWindowCommand(WindowSet open, ProgramWindow asked) { return FirstOpen(kCommandOrder, open, asked); }

WindowDeed OnTrayDoubleClick(WindowSet open) { return FirstOpen(kClickOrder, open, ProgramWindow::View); }

}  // namespace vardel
