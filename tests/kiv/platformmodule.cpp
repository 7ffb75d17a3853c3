// A tiny loadable module for tst_platform: one exported function with a known answer.
extern "C" __attribute__((visibility("default"))) int kivTestAnswer()
{
    return 42;
}
