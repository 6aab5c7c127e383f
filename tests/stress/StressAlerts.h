// What the ticks of a whole program under load show: each line that is told is counted by what it tells of. Popups
// show for a few ticks, so alerts are held back and told later. Main thread alone.
#pragma once

#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

#include "frame/AlertSurface.h"
#include "frame/LooklessPopup.h"

namespace vardel::test {

// Counts by the heading's beginning.
class ToldLines {
  public:
    void Take(const char* text) {
        const std::string_view whole(text);
        const std::string_view heading = whole.substr(0, 11);
        lines_[std::string(heading)] += LinesBehindTheFirst(whole);
        messages_ += heading == "Syslog mess" ? LinesBehindTheFirst(whole) / 2 + 1 : 0;
    }
    int Lines(const std::string& heading) { return lines_[heading.substr(0, 11)]; }
    int SyslogMessages() const { return messages_; }

  private:
    // A cut text says in its last line how many more there are.
    static int LinesBehindTheFirst(std::string_view text) {
        int lines = 0;
        for (const char c : text) lines += c == '\n';
        const std::size_t cut = text.rfind("\n... (+");
        if (cut != std::string_view::npos) lines += std::atoi(text.data() + cut + 7) - 1;
        return lines;
    }
    std::map<std::string, int> lines_;
    int messages_ = 0;
};

class StressPopup : public LooklessPopup {
  public:
    explicit StressPopup(ToldLines& told) : told_(told) {}
    bool IsShowing() const override { return ticksLeft > 0; }
    bool Show(const char* text) override {
        told_.Take(text);
        ++shows;
        ticksLeft = 3;
        return true;
    }
    int ticksLeft = 0;
    int shows = 0;

  private:
    ToldLines& told_;
};

class StressSurface : public AlertSurface {
  public:
    void ShowTrayNotify(u32 iconId, const char* text, const char*) override {
        if (iconId != kTrayProgram) told.Take(text);
    }
    NotifyPopup* HostPopup() override { return &host; }
    NotifyPopup* WatchPopup() override { return &watch; }
    NotifyPopup* SyslogPopup() override { return &syslog; }
    Color MenuHighlight() override { return {51, 153, 255}; }

    // Called between ticks.
    void LetTimePass() {
        for (StressPopup* popup : {&host, &watch, &syslog}) popup->ticksLeft -= popup->ticksLeft > 0;
    }
    ToldLines told;
    StressPopup host{told}, watch{told}, syslog{told};
};

}  // namespace vardel::test
