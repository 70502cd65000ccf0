// A variable of which a process has only one, whichever libraries define it: a library that
// exports it as a unique symbol is never unmapped.

template <class T>
struct __attribute__((visibility("default"))) PerProcess {
  static int count;
};
template <class T>
int PerProcess<T>::count = 0;

extern "C" __attribute__((visibility("default"))) int CountInThisProcess() {
  return ++PerProcess<int>::count;
}
