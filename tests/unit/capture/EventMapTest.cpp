#include "capture/EventMap.h"

#include <gtest/gtest.h>

#include "resources/ResourceIds.h"

namespace vardel {
namespace {

struct EventKindRow {
    EventKind kind;
    i32 number;  // in logs, for plugins and in the replay's output
    u32 text;
};

constexpr EventKindRow kEventKinds[] = {
    {EventKind::ProgramStarted, 1, IDS_EVENT_PROGRAM_STARTED},
    {EventKind::ProgramExited, 2, IDS_EVENT_PROGRAM_EXITED},
    {EventKind::CaptureStarted, 3, IDS_EVENT_CAPTURING_STARTED},
    {EventKind::CaptureStopped, 4, IDS_EVENT_CAPTURING_STOPPED},
    {EventKind::NewHost, 5, IDS_EVENT_NEW_HOST},
    {EventKind::ShareAccessed, 6, IDS_EVENT_SHARE_ACCESSED},
    {EventKind::WatchedHostOnline, 7, IDS_EVENT_HOST_ONLINE},
    {EventKind::WatchedHostOffline, 8, IDS_EVENT_HOST_OFFLINE},
    {EventKind::CaptureStoppedNoInterface, 9, IDS_EVENT_NO_INTERFACE},
    {EventKind::SyslogNotification, 10, IDS_EVENT_SYSLOG},
    {EventKind::DeviceNameFound, 11, IDS_EVENT_DEVICE_NAME},
    {EventKind::DeviceAnnounced, 12, IDS_EVENT_DEVICE_FOUND},
};

TEST(EventKinds, EachIsPostedUnderItsNumberAndHasTheTextOfThatNumber) {
    EventMap& map = TheEventMap();
    map.Clear();
    for (const EventKindRow& row : kEventKinds) {
        ASSERT_TRUE(PostEvent(row.kind));
        ReadPin pin;
        EXPECT_EQ(map.First()->Value()->kind, row.number);
        EXPECT_EQ(static_cast<u32>(row.number) + kEventTextBase, row.text);
        map.Clear();
    }
}

}  // namespace
}  // namespace vardel
