// A component library of the application, loaded by path and released again.
extern "C" __attribute__((visibility("default"))) int ConsumerAnswer() { return 42; }
