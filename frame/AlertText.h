// AlertText: the text of one alert. A heading, then the lines of the entries.
//
// An owner of its own, used by one thread. However many entries there are, the text ends where no screen could show
// more: at kMostLines lines, the last of which then tells how many entries it left out.
#pragma once

#include <string>
#include <utility>

#include "foundation/TcString.h"

namespace vardel {

class AlertText {
  public:
    static constexpr std::size_t kMostLines = 500;

    explicit AlertText(std::string heading) : text_(std::move(heading)) {}

    // `form(line)` appends the entry's line, its leading line feed included, to the text that it is handed. It isn't
    // called once there is no more room.
    template <class Form>
    void Add(Form&& form) {
        ++entries_;
        if (hidden_ > 0) {
            ++hidden_;
            return;
        }
        std::string line;
        form(line);
        Take(std::move(line));
    }

    // Whether any entry was added.
    bool HasContent() const { return entries_ > 0; }
    std::string Finish() const;

  private:
    void Take(std::string line);

    std::string text_;
    std::string last_;         // an entry that fits only if it is the last one
    std::size_t lines_ = 1;    // of text_, the heading included
    std::size_t entries_ = 0;
    std::size_t hidden_ = 0;   // entries that are not in text_
};

// A text that other threads may replace meanwhile, whole.
void AppendText(std::string& target, const TcString& text);

}  // namespace vardel
