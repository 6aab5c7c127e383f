#include "frame/AlertText.h"

#include <algorithm>

namespace vardel {

// A name may hold line feeds of its own, so lines are counted, not entries.
void AlertText::Take(std::string line) {
    const auto lines = static_cast<std::size_t>(std::count(line.begin(), line.end(), '\n'));
    if (lines_ + lines < kMostLines) {
        text_ += line;
        lines_ += lines;
        return;
    }
    hidden_ = 1;
    if (lines_ + lines == kMostLines) last_ = std::move(line);
}

std::string AlertText::Finish() const {
    if (hidden_ == 0) return text_;
    if (hidden_ == 1 && !last_.empty()) return text_ + last_;
    return text_ + "\n... (+" + std::to_string(hidden_) + ")";
}

void AppendText(std::string& target, const TcString& text) {
    const TcString own(text);
    target.append(own.GetContent(), static_cast<std::size_t>(own.GetLength()));
}

}  // namespace vardel
