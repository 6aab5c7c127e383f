// A notification service of the desktop that keeps what it was given: "TITLE: TEXT".
#pragma once

#include <string>
#include <vector>

#include "platform/DesktopNotice.h"

namespace vardel::test {

class RecordingNotices : public DesktopNotice {
  public:
    void Show(std::string_view title, std::string_view text) override {
        shown.push_back(std::string(title) + ": " + std::string(text));
    }
    std::vector<std::string> shown;
};

}  // namespace vardel::test
