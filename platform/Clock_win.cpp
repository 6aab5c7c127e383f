#include "platform/Clock.h"

#include <chrono>
#include <cstring>
#include <ctime>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

class SystemTime : public Clock {
  public:
    i64 Now() override {
        using namespace std::chrono;
        return duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
    }
    u32 TickCount() override { return GetTickCount(); }
};

}  // namespace

Clock& SystemClock() {
    static SystemTime clock;
    return clock;
}

void FormatTimeOfDay(i64 seconds, char (&text)[kTimeOfDaySize]) {
    std::tm local{};
    const __time64_t moment = seconds;
    if (_localtime64_s(&local, &moment) != 0 || std::strftime(text, sizeof text, "%H:%M:%S", &local) == 0)
        std::strcpy(text, "00:00:00");
}

}  // namespace vardel
