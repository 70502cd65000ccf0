#ifndef KVL_SOURCE_LOCATION_H
#define KVL_SOURCE_LOCATION_H

#include "KVLExport.h"
#include "MRBUnicodeString.h"

/// One place in source code: where an object was registered. A plain value.
class KVL_EXPORT KVLSourceLocation {
 public:
  /// No path, line 0, no detail.
  KVLSourceLocation() noexcept : line(0) {}
  KVLSourceLocation(const MRBUnicodeString& path, int line, const MRBUnicodeString& detail);
  KVLSourceLocation(const KVLSourceLocation&) = default;
  /// Leaves the two texts of the source empty and its line as it was.
  KVLSourceLocation(KVLSourceLocation&&) noexcept = default;
  KVLSourceLocation& operator=(const KVLSourceLocation&) = default;
  KVLSourceLocation& operator=(KVLSourceLocation&&) noexcept = default;
  ~KVLSourceLocation() = default;

  /// True when path, line and detail are all equal.
  bool operator==(const KVLSourceLocation& other) const;
  bool operator!=(const KVLSourceLocation& other) const { return !(*this == other); }

  /// The path with `separator` between its components; an empty `separator` keeps the path's own,
  /// which is "\" when the path contains one and "/" otherwise.
  ///
  /// With `shorten`, the result begins with the component before the first one that is
  /// "PrivateInterfaces", "ProtectedInterfaces", "PublicInterfaces" or "IdentityCard" or that ends
  /// with ".m": the folder a reader knows the file by.
  MRBUnicodeString GetPath(bool shorten, const MRBUnicodeString& separator) const;

  /// "path:line<detail>", without what is not known; "Line 7" when there is a line and no path.
  MRBUnicodeString ToString() const;

  MRBUnicodeString path;    ///< as the registering code wrote it; may be empty
  int line;                 ///< counted from 1; below 1, no line is known
  MRBUnicodeString detail;  ///< free text; may be empty
};

#endif
