#include "KVLCandidates.h"

#include <algorithm>

namespace {

constexpr std::size_t MostShown = 100;
constexpr int Gap = 2;  // columns between two words

bool IsInsideCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::string KVLCommonStart(const std::vector<std::string>& words) {
  // What the first and the last have in common, those between them have as well.
  const std::string& first = words.front();
  const std::string& last = words.back();
  const auto difference = std::mismatch(first.begin(), first.end(), last.begin(), last.end());
  std::size_t length = static_cast<std::size_t>(difference.first - first.begin());
  while (length > 0 && length < first.size() && IsInsideCharacter(first[length]))
    --length;
  return first.substr(0, length);
}

int KVLCountCharacters(const std::string& text) {
  const auto inside = std::count_if(text.begin(), text.end(), IsInsideCharacter);
  return static_cast<int>(text.size()) - static_cast<int>(inside);
}

std::vector<std::string> KVLRowsOf(const std::vector<std::string>& words, int width) {
  const std::size_t shown = std::min(words.size(), MostShown);
  int widest = 0;
  for (std::size_t i = 0; i < shown; ++i)
    widest = std::max(widest, KVLCountCharacters(words[i]));
  const int fitting = std::max(1, (width + Gap) / (widest + Gap));
  const std::size_t nbRows =
      (shown + static_cast<std::size_t>(fitting) - 1) / static_cast<std::size_t>(fitting);
  std::vector<std::string> rows(nbRows);
  for (std::size_t i = 0; i < shown; ++i) {
    std::string& row = rows[i % nbRows];
    // Its column begins where that of the words before it ends.
    const int start = static_cast<int>(i / nbRows) * (widest + Gap);
    row.append(static_cast<std::size_t>(start - KVLCountCharacters(row)), ' ');
    row += words[i];
  }
  if (shown < words.size()) {
    rows.push_back("... and " + std::to_string(words.size() - shown) + " more");
  }
  return rows;
}

std::vector<std::string> KVLWrap(const std::string& text, int width) {
  std::vector<std::string> lines(1);
  for (std::size_t first = 0; first < text.size();) {
    const std::size_t end = std::min(text.find(' ', first), text.size());
    const std::string word = text.substr(first, end - first);
    std::string& line = lines.back();
    if (line.empty()) {
      line = word;
    } else if (KVLCountCharacters(line) + 1 + KVLCountCharacters(word) <= width) {
      line += " " + word;
    } else {
      lines.push_back(word);
    }
    first = end + 1;
  }
  return lines;
}
