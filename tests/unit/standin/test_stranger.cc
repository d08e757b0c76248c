// A library without the one function that makes a plug-in.
extern "C" __attribute__((visibility("default"))) int NotAPlugin() { return 0; }
