// A module to load: one symbol, and a product version.
extern "C" __attribute__((visibility("default"))) int kiv_test_answer() { return 42; }
