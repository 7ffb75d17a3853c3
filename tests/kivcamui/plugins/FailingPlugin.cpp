// A controller UI plugin whose entry fails; the scan unloads it. It holds nothing that would
// keep it loaded.
extern "C" __attribute__((visibility("default"))) bool kivInitPlugin()
{
    return false;
}
