// A library that calls what no library has.

extern "C" int KVLHostTestNowhere();

extern "C" __attribute__((visibility("default"))) int KVLHostTestCallsNowhere() {
  return KVLHostTestNowhere();
}
