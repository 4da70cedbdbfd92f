// A library for library_test.cc to load.
extern "C" int Answer() { return 42; }
