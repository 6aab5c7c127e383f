#include "frame/AlertLines.h"

#include <string>
#include <string_view>

#include "frame/HostTable.h"
#include "frame/LooklessPopup.h"
#include "platform/CodePage.h"

namespace vardel {

namespace {

class LinePopup : public LooklessPopup {
  public:
    explicit LinePopup(AlertLines& lines) : lines_(lines) {}
    bool Show(const char* text) override {
        lines_.Tell(text);
        return true;
    }

  private:
    AlertLines& lines_;
};

// Where a line stands in the text is told by its blanks: a tab in front of it is left out.
std::string_view WithoutTab(std::string_view line) {
    return line.starts_with('\t') ? line.substr(1) : line;
}

}  // namespace

AlertLines::AlertLines(std::FILE* output, DesktopNotice& notices)
    : output_(output), notices_(notices), popup_(MakePopup()) {}

AlertLines::~AlertLines() = default;

std::unique_ptr<NotifyPopup> AlertLines::MakePopup() { return std::make_unique<LinePopup>(*this); }

void AlertLines::ShowTrayNotify(u32 iconId, const char* text, const char*) {
    if (iconId != kTrayProgram) Tell(text);
}

void AlertLines::Tell(const char* text) {
    std::string_view rest(text);
    if (rest.empty()) return;
    notices_.Show(kProductName, rest);
    if (!output_) return;
    std::string lines;
    for (bool more = true, first = true; more; first = false) {
        const std::size_t end = rest.find('\n');
        more = end != std::string_view::npos;
        lines += (first ? "Alert: " : "    ") + PrintableText(WithoutTab(rest.substr(0, end)), OutputTakesUtf8()) + "\n";
        rest.remove_prefix(more ? end + 1 : rest.size());
    }
    std::fwrite(lines.data(), 1, lines.size(), output_);
    std::fflush(output_);
}

}  // namespace vardel
