// The loader finds the support library for this object as it would for a host. Never run.

extern "C" __attribute__((visibility("default"))) int vestra_support_probe;
int vestra_support_probe = 0;
