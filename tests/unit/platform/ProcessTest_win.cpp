#include <gtest/gtest.h>

#include "platform/Process.h"
#include "platform/WindowsApi.h"

namespace vardel {
namespace {

bool Exists(const char* name) {
    const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, name);
    if (mutex) CloseHandle(mutex);
    return mutex != nullptr;
}

TEST(ProcessWindows, AClaimStandsAsANamedMutex) {
    EXPECT_FALSE(Exists("VardelTestClaim"));
    EXPECT_FALSE(SystemProcess().ClaimName("VardelTestClaim"));
    EXPECT_TRUE(Exists("VardelTestClaim"));
    EXPECT_FALSE(SystemProcess().ClaimName("VardelTestClaim"));
}

TEST(ProcessWindows, AMutexOfThatNameMeansThatAnotherRuns) {
    const HANDLE other = CreateMutexA(nullptr, FALSE, "VardelTestOther");
    ASSERT_NE(other, nullptr);
    EXPECT_TRUE(SystemProcess().ClaimName("VardelTestOther"));
    CloseHandle(other);
    EXPECT_FALSE(Exists("VardelTestOther")) << "a failed claim must not hold the name";
    EXPECT_FALSE(SystemProcess().ClaimName("VardelTestOther"));
}

TEST(ProcessWindows, TheApartmentIsEnteredAndLeft) {
    ASSERT_TRUE(SystemProcess().EnterApartment());
    EXPECT_TRUE(SystemProcess().EnterApartment()) << "once more on the same thread";
    SystemProcess().LeaveApartment();
    SystemProcess().LeaveApartment();
}

TEST(ProcessWindows, TheNetworkIsThereBetweenStartAndStop) {
    SystemProcess().StartNetwork();
    const SOCKET probe = socket(AF_INET, SOCK_DGRAM, 0);
    EXPECT_NE(probe, INVALID_SOCKET);
    if (probe != INVALID_SOCKET) closesocket(probe);
    SystemProcess().StopNetwork();
}

}  // namespace
}  // namespace vardel
