#include "platform/CommandLine.h"

namespace vardel {

namespace {

bool IsBlank(char character) { return character == ' ' || character == '\t'; }

class Splitter {
  public:
    explicit Splitter(std::string_view text) : text_(text) {}

    std::vector<std::string> Run() {
        for (;;) {
            while (at_ < text_.size() && IsBlank(text_[at_])) ++at_;
            if (at_ == text_.size()) return std::move(arguments_);
            arguments_.push_back(NextArgument());
        }
    }

  private:
    std::string NextArgument() {
        std::string argument;
        bool quoted = false;
        while (at_ < text_.size() && (quoted || !IsBlank(text_[at_]))) {
            if (text_[at_] == '\\') {
                TakeBackslashes(argument);
            } else if (text_[at_] != '"') {
                argument += text_[at_++];
            } else if (quoted && at_ + 1 < text_.size() && text_[at_ + 1] == '"') {
                argument += '"';
                at_ += 2;
            } else {
                quoted = !quoted;
                ++at_;
            }
        }
        return argument;
    }

    void TakeBackslashes(std::string& argument) {
        std::size_t count = 0;
        for (; at_ < text_.size() && text_[at_] == '\\'; ++at_) ++count;
        if (at_ == text_.size() || text_[at_] != '"') {
            argument.append(count, '\\');
            return;
        }
        argument.append(count / 2, '\\');
        if (count % 2 == 0) return;
        argument += '"';
        ++at_;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::vector<std::string> arguments_;
};

}  // namespace

std::vector<std::string> SplitCommandLine(std::string_view text) { return Splitter(text).Run(); }

}  // namespace vardel
