// A library that matches the plugins' file names but has no entry; the scan leaves it loaded.
extern "C" __attribute__((visibility("default"))) int kivTestSomethingElse()
{
    return 1;
}
