#include "capture/Fences.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/unit/support/ScriptedEvents.h"

namespace vardel {
namespace {

TEST(Fences, EachOfTheNineIsMadeOnceOpenAndClosedAgain) {
    test::ScriptedEvents events;
    Fences fences(events);
    EXPECT_TRUE(fences.CreateAll());
    std::multiset<std::string> names;
    for (const test::ScriptedEvents::Created& created : events.created) {
        names.insert(created.name);
        EXPECT_TRUE(created.manualReset) << created.name;
        EXPECT_TRUE(created.signalled) << created.name;
    }
    EXPECT_EQ(names, (std::multiset<std::string>{"ReadInARPMap", "ReadInNewEntryList", "ReadInMACSpoofList",
                                                 "ReadShareList", "ReadWMIAccessList", "ReadNetResList",
                                                 "ReadSysLogList", "ReadNotifyList", "ReadVendorMap"}));
    fences.CloseAll();
    EXPECT_EQ(events.open, 0);
    fences.CloseAll();
    EXPECT_EQ(events.open, 0) << "closed once";
}

TEST(Fences, EachHasTheHandleOfItsOwnName) {
    test::ScriptedEvents events;
    Fences fences(events);
    fences.CreateAll();
    for (const Fence fence : {Fence::ArpMap, Fence::NewEntries, Fence::MacSpoofs, Fence::Shares, Fence::WmiAccess,
                              Fence::NetRes, Fence::SysLog, Fence::Notify, Fence::VendorMap}) {
        const std::size_t place = reinterpret_cast<std::uintptr_t>(fences.Handle(fence)) - 1;
        ASSERT_LT(place, events.created.size());
        EXPECT_EQ(events.created[place].name, Fences::Name(fence));
    }
}

}  // namespace
}  // namespace vardel
