#include "platform/DesktopNotice.h"

namespace vardel {

namespace {

class NoDesktopNotice : public DesktopNotice {
  public:
    void Show(std::string_view, std::string_view) override {}
};

}  // namespace

DesktopNotice& SystemDesktopNotice() {
    static NoDesktopNotice notice;
    return notice;
}

}  // namespace vardel
