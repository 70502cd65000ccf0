#include <KVLIter.h>

#include <cstdio>

// Counts down to 1, then reports a failure of its own.
class Countdown : public KVLIterCursor<int> {
 public:
  explicit Countdown(int start) : next(start) {}

  long Next(int& element) override {
    if (next == 0) return KVLResult_Failure;
    element = next;
    --next;
    return KVLResult_Success;
  }

 private:
  int next;
};

int main() {
  KVLIter<int> countdown(new Countdown(3));
  for (const int number : countdown)
    std::printf("%d\n", number);
  // The loop ends at the end and at a failure alike; the status tells which.
  if (KVLFailed(countdown.GetStatus())) std::printf("failed: %ld\n", countdown.GetStatus());
}
