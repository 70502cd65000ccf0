#ifndef KVL_CANDIDATES_H
#define KVL_CANDIDATES_H

#include <string>
#include <vector>

/// How the words that a line may go on with are shown.

/// What all `words`, sorted and not none, begin with. Ends between two characters.
std::string KVLCommonStart(const std::vector<std::string>& words);

/// The characters of a UTF-8 text.
int KVLCountCharacters(const std::string& text);

/// The words in columns of rows that are at most `width` columns wide, as far as the words are; the
/// first hundred of them, and how many more there are.
std::vector<std::string> KVLRowsOf(const std::vector<std::string>& words, int width);

/// `text` in lines at most `width` columns wide, broken at blanks, as far as its words are no
/// longer than that.
std::vector<std::string> KVLWrap(const std::string& text, int width);

#endif
