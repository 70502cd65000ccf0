#ifndef KVL_TESTS_TRACE_CAPTURE_H
#define KVL_TESTS_TRACE_CAPTURE_H

#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "MRBHost.h"

/// While it lives, collects what is reported to the trace sink, of any thread, and keeps it from
/// the sink that was installed before, which it puts back. Captures may be nested; the innermost
/// one receives.
class TraceCapture {
 public:
  struct Report {
    int level;
    std::string text;
    int flags;

    friend bool operator==(const Report& left, const Report& right) {
      return left.level == right.level && left.text == right.text && left.flags == right.flags;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Report& report) {
      return stream << report.level << ": " << report.text << " (" << report.flags << ")";
    }
  };

  TraceCapture() : outer(innermost), former(nullptr) {
    innermost = this;
    former = MRBSetTraceSink(&Receive);
  }
  ~TraceCapture() {
    MRBSetTraceSink(former);
    innermost = outer;
  }
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;

  /// In the order of their arrival.
  std::vector<Report> GetReports() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return reports;
  }
  std::vector<std::string> GetTexts() const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> texts;
    for (const Report& report : reports)
      texts.push_back(report.text);
    return texts;
  }
  void Clear() {
    const std::lock_guard<std::mutex> lock(mutex);
    reports.clear();
  }

 private:
  static void Receive(int level, const char* text, int flags) {
    const std::lock_guard<std::mutex> lock(innermost->mutex);
    innermost->reports.push_back({level, text, flags});
  }

  static inline TraceCapture* innermost = nullptr;

  TraceCapture* const outer;
  MRBTraceSink former;
  mutable std::mutex mutex;
  std::vector<Report> reports;
};

#endif
