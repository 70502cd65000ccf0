#include "KVLSourceLocation.h"

#include <new>

#include "KVLIterCursors.h"
#include "KVLStringOperations.h"
#include "KVLVector.h"

namespace {

// The component that, with the one before it, is how a reader knows the file.
bool IsLandmark(const MRBUnicodeString& component) {
  return component == "PrivateInterfaces" || component == "ProtectedInterfaces" ||
         component == "PublicInterfaces" || component == "IdentityCard" ||
         KVLStringOperations::EndsWith(component, ".m");
}

}  // namespace

KVLSourceLocation::KVLSourceLocation(const MRBUnicodeString& sourcePath, int sourceLine,
                                     const MRBUnicodeString& freeText)
    : path(sourcePath), line(sourceLine), detail(freeText) {}

bool KVLSourceLocation::operator==(const KVLSourceLocation& other) const {
  return path == other.path && line == other.line && detail == other.detail;
}

MRBUnicodeString KVLSourceLocation::GetPath(bool shorten, const MRBUnicodeString& separator) const {
  const MRBUnicodeString inputSeparator = path.FindPosition("\\", 0) != 0 ? "\\" : "/";
  const MRBUnicodeString& outputSeparator = separator.IsEmpty() ? inputSeparator : separator;

  KVLVector<MRBUnicodeString> components;
  for (const MRBUnicodeString& component : KVLStringOperations::Split(path, inputSeparator)) {
    components.Append(component);
  }

  int start = 0;
  for (int i = 0; shorten && i < components.GetCount(); ++i) {
    if (!IsLandmark(components[i])) continue;
    start = i > 0 ? i - 1 : 0;
    break;
  }

  return KVLStringOperations::Join(
      KVLIter<MRBUnicodeString>(new (std::nothrow) KVLRangeCursor<MRBUnicodeString>(
          components.begin() + start, components.end())),
      outputSeparator);
}

MRBUnicodeString KVLSourceLocation::ToString() const {
  const MRBUnicodeString number = KVLStringOperations::FromNum(line);
  MRBUnicodeString text = path;
  if (line >= 1) text += (path.IsEmpty() ? "Line " : ":") + number;
  if (!detail.IsEmpty()) text += "<" + detail + ">";
  return text;
}
