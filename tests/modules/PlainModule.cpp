// The least that can be loaded: one entry point with an answer.
#if defined(__MINGW32__)
#define EXPORTED extern "C" __declspec(dllexport)
#else
#define EXPORTED extern "C" __attribute__((visibility("default")))
#endif

EXPORTED int PlainAnswer() {
    return 42;
}
