#ifndef KVL_OUTPUT_H
#define KVL_OUTPUT_H

/// Standard output and standard error, written so that on a terminal everything appears in its
/// order. Says on standard error, once, when results are lost, unless that is because nobody reads
/// them any more.
class KVLOutput {
 public:
  /// Takes text as a `KVLShellSink` does. False when results have been lost.
  bool Write(int channel, const char* text, int length);
  /// Writes out what is still held back. False when results have been lost.
  bool Flush();

 private:
  void Fail(int error);

  bool hasFailed = false;
};

#endif
