// A surface that shows nothing and writes down what it was asked for, each call as one line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "frame/AlertSurface.h"

namespace vardel::test {

using Calls = std::vector<std::string>;

inline std::string Shown(Color color) {
    return "(" + std::to_string(color.red) + "," + std::to_string(color.green) + "," + std::to_string(color.blue) + ")";
}

// Lines read "NAME reset", "NAME colors (l) (r) (t) (b)", "NAME time 7500", "NAME show TEXT" and so on. A popup
// shows from Show until the test ends it.
class RecordingPopup : public NotifyPopup {
  public:
    RecordingPopup(std::string name, Calls& calls) : name_(std::move(name)), calls_(calls) {}
    bool IsShowing() const override { return showing; }
    void Reset() override { Add("reset"); }
    void SetColors(Color left, Color right, Color text, Color border) override {
        Add("colors " + Shown(left) + " " + Shown(right) + " " + Shown(text) + " " + Shown(border));
    }
    void SetDisplayTime(i32 milliseconds) override { Add("time " + std::to_string(milliseconds)); }
    void SetCorner(bool atTheEdge) override { Add(atTheEdge ? "at the edge" : "in the middle"); }
    void SetRamp(bool ramp) override { Add(ramp ? "ramp" : "gradient"); }
    void SetFont(i32 points, i32 weight) override {
        Add("font " + std::to_string(points) + " " + std::to_string(weight));
    }
    bool Show(const char* text) override {
        Add(std::string("show ") + text);
        return showing = true;
    }

    bool showing = false;

  private:
    void Add(const std::string& line) { calls_.push_back(name_ + " " + line); }
    const std::string name_;
    Calls& calls_;
};

// "tray 102 TEXT | TIP", and the calls of the popups "host", "watch" and "syslog".
class AlertRecorder : public AlertSurface {
  public:
    void ShowTrayNotify(u32 iconId, const char* text, const char* tip) override {
        calls.push_back("tray " + std::to_string(iconId) + " " + text + " | " + tip);
        if (onTray) onTray();
    }
    NotifyPopup* HostPopup() override { return hasHost ? &host : nullptr; }
    NotifyPopup* WatchPopup() override { return hasWatch ? &watch : nullptr; }
    NotifyPopup* SyslogPopup() override { return hasSyslog ? &syslog : nullptr; }
    Color MenuHighlight() override { return {51, 153, 255}; }

    Calls calls;
    std::function<void()> onTray;
    bool hasHost = true, hasWatch = true, hasSyslog = true;
    RecordingPopup host{"host", calls}, watch{"watch", calls}, syslog{"syslog", calls};
};

}  // namespace vardel::test
