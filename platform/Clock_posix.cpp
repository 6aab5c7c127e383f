#include "platform/Clock.h"

#include <chrono>
#include <cstring>
#include <ctime>

namespace vardel {

namespace {

class SystemTime : public Clock {
  public:
    i64 Now() override {
        using namespace std::chrono;
        return duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
    }
    u32 TickCount() override {
        using namespace std::chrono;
        return static_cast<u32>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
};

}  // namespace

Clock& SystemClock() {
    static SystemTime clock;
    return clock;
}

void FormatTimeOfDay(i64 seconds, char (&text)[kTimeOfDaySize]) {
    std::tm local{};
    const std::time_t moment = seconds;
    if (!localtime_r(&moment, &local) || std::strftime(text, sizeof text, "%H:%M:%S", &local) == 0)
        std::strcpy(text, "00:00:00");
}

}  // namespace vardel
