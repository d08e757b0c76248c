// A library without the exported function that a plug-in must have.
extern "C" __attribute__((visibility("default"))) int NotAPlugin() { return 0; }
