// The application's run over the system's real events and threads, a scripted capture and a frame whose user does what
// the test says, with a record of the order in which things came.
//
//     Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
//     frame.whileItRuns = [](VardelData& data, Vardel& app) { ... };
//     Run();
//     EXPECT_TRUE(record.Has("create app"));
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "platform/SettingsStore.h"
#include "platform/TreeSettingsStore.h"
#include "tests/unit/support/AlertRecorder.h"
#include "tests/unit/support/RecordingSystem.h"
#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

// A frame whose user does `whileItRuns` and then leaves.
class ScriptedFrame : public VardelFrame {
  public:
    explicit ScriptedFrame(Record& record) : record_(record) {}

    bool CreateApp(VardelData& data, Vardel& app) override {
        record_.Add("create app");
        if (whileItRuns) whileItRuns(data, app);
        record_.Add("app left");
        return true;
    }
    void ShowError(const char* title, const char* text) override {
        record_.Add(std::string("error ") + title + ": " + text);
    }
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override {
        record_.Add("make update popup");
        return hasPopup ? std::make_unique<RecordingPopup>("update", popupCalls) : nullptr;
    }

    std::function<void(VardelData&, Vardel&)> whileItRuns;
    bool hasPopup = true;
    Calls popupCalls;

  private:
    Record& record_;
};

struct MainRunFixture : testing::Test {
    using Lines = std::vector<std::string>;

    MainRunFixture() {
        TheEventMap().SetGuard(nullptr, nullptr);
        TheEventMap().Clear();
        capture.devices = {{.name = "lan0"}};
        capture.onExhausted = [] { std::this_thread::sleep_for(std::chrono::milliseconds(5)); };
        InstallCapture(capture.EntryPoints(), system.captureModules);
        threads.functions = {{&SnifferThread, "SnifferThread"},
                             {&FileSharingThread, "FileSharingThread"},
                             {&WMIThread, "WMIThread"},
                             {&CheckNetResThread, "CheckNetResThread"},
                             {&ReadVendorThread, "ReadVendorThread"},
                             {&NotifyPluginThread, "NotifyPluginThread"},
                             {&WriteEventsThread, "WriteEventsThread"}};
        system.strings.texts[33] = "no adapter text";
        system.strings.texts[34] = "no data text";
        system.strings.texts[158] = "no library text";
        frame.whileItRuns = [](VardelData&, Vardel&) {};
    }
    ~MainRunFixture() override {
        app.reset();
        threads.CollectLeft();
        TheEventMap().SetGuard(nullptr, nullptr);
        TheEventMap().Clear();
    }

    // The settings as an earlier run left them.
    void Stored(const std::function<void(VardelSettings&)>& change) {
        VardelSettings settings;
        change(settings);
        settings.WriteSettings();
        settings.WriteLastUpdateTime();
    }
    i64 StoredLastUpdateTime() {
        VardelSettings settings;
        settings.ReadSettings();
        return settings.LastUpdateTime;
    }

    u32 Run(const char* commandLine = "") {
        app = std::make_unique<Vardel>(services, frame);
        app->MainInit(nullptr, nullptr, commandLine, 0);
        return app->MainRun();
    }
    void EndApp() { app.reset(); }

    std::vector<i32> EventKinds() {
        std::vector<i32> kinds;
        TheEventMap().ForEach([&](i32, const EventRecord* event) { kinds.push_back(event->kind); });
        return kinds;
    }

    Record record;
    RecordingEvents events{record};
    RecordingThreads threads{record};
    TestServices system;
    Services services = system.services.With(events).With(threads);
    ScriptedCapture capture;
    TreeSettingsStore store;
    ScopedSettingsStore installed{store};
    ScriptedFrame frame{record};
    std::unique_ptr<Vardel> app;
};

// Names a parametrised case by its row.
struct RowName {
    template <class Info>
    std::string operator()(const Info& row) const {
        return row.param.name;
    }
};

}  // namespace vardel::test
