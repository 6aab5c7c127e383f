#include "foundation/ProcessSecret.h"

#include <random>

namespace vardel::detail {

u64 DrawProcessSecret() {
    std::random_device device;
    const u64 high = device();
    return (high << 32 | device()) | 0x8000000000000001ull;
}

}  // namespace vardel::detail
