// The handler of ARP and RARP frames under hostile frames.
#include "tests/fuzz/FuzzLan.h"

extern "C" int LLVMFuzzerTestOneInput(const vardel::u8* input, std::size_t size) {
    if (size == 0) return 0;
    vardel::test::FuzzLan lan(input[0]);
    vardel::VardelARPImpl handler;
    lan.Hears(handler, input + 1, size - 1);
    return 0;
}
