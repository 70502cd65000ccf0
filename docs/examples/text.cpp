#include <KVLStringOperations.h>

#include <cstdio>

int main() {
  using Text = MRBUnicodeString;
  Text path = "math";
  path += "/add";
  std::puts(path);

  // Positions count from 0 and bytes; a search that finds nothing gives -1.
  const int slash = path.SearchSubString("/", 0, Text::MRBSearchForward);
  std::puts(path.SubString(slash + 1, path.GetLengthInChar()));

  for (const Text& piece :
       KVLStringOperations::SplitWithDepth("f(a,b),{c,d},e", ',', KVLStringOperations::DepthAll)) {
    std::puts(piece);
  }
  std::puts(KVLStringOperations::Join(KVLStringOperations::Split("x;y;z", ";"), ", "));
  std::puts(KVLStringOperations::SubStringBetween("abcdef", 1, -1));
  std::puts(KVLStringOperations::FromNum(0.25));
  std::puts(KVLStringOperations::Trim("  blanks around\t"));
}
