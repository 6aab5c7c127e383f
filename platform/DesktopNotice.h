// The desktop's notification service, for a program without windows of its own.
//
// Linux: the command notify-send, if it is installed and the user's session has a message bus; started without a
// shell, never waited for. Windows: nothing, the tray icon's balloons are the program's own. Main thread.
#pragma once

#include <string>
#include <string_view>

namespace vardel {

class DesktopNotice {
  public:
    virtual ~DesktopNotice() = default;

    // Shows the texts (system code page; `text` may have several lines) as they are: nothing in them is taken for
    // markup or an option. Silent where no service runs, and while many earlier notices are still being handed over.
    virtual void Show(std::string_view title, std::string_view text) = 0;
};

DesktopNotice& SystemDesktopNotice();

// The body of a notice: UTF-8, with `&`, `<` and `>` as entities, other control characters than line feed and tab as
// "?", cut with "..." behind kLongestNotice characters.
constexpr std::size_t kLongestNotice = 20'000;
std::string NoticeBody(std::string_view text);

}  // namespace vardel
