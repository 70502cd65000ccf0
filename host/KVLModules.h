#ifndef KVL_MODULES_H
#define KVL_MODULES_H

#include <string>
#include <vector>

/// The modules that the program loads, and what became of them. One at a time.
class KVLModules {
 public:
  void Load();
  /// False, after saying so on standard error, when one could not be unloaded.
  bool Unload() const;

  bool AreComplete() const { return refused.empty(); }
  /// How many were loaded.
  int Count() const;

  /// A line for each that was not loaded, and why; those alone that the user has named in
  /// "KVLCodeEnv_Modules", unless `withBuiltIn`.
  std::vector<std::string> DescribeRefused(bool withBuiltIn) const;

 private:
  static void OnReport(int level, const char* text, int flags);

  std::vector<std::string> refused;  // their names
};

#endif
