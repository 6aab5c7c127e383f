// A number that is drawn once a process and that nobody outside can guess: the hashed containers mix it into
// their keys' hash numbers.
#pragma once

#include "platform/Types.h"

namespace vardel {

namespace detail {
u64 DrawProcessSecret();
inline const u64 processSecret = DrawProcessSecret();
}  // namespace detail

// Odd, so that multiplying by it loses nothing.
inline u64 ProcessSecret() { return detail::processSecret; }

}  // namespace vardel
