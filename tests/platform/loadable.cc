// A library for services_test.cc to load.
extern "C" int Answer() { return 42; }
