#include "Figures.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <map>

namespace kvlbench {

namespace {

using Fields = std::vector<std::string>;

// A line of CSV; quotes are doubled inside quotes.
Fields FieldsOf(const std::string& line) {
  Fields fields(1);
  bool isQuoted = false;
  for (const char character : line) {
    if (character == '"') {
      isQuoted = !isQuoted;
    } else if (character == ',' && !isQuoted) {
      fields.emplace_back();
    } else {
      fields.back() += character;
    }
  }
  return fields;
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() &&
         text.compare(text.size() - end.size(), std::string::npos, end) == 0;
}

// "workload/who/iterations:1/repeats:3_median": what is asked of the library follows the name.
bool ReadName(std::string name, Figure& figure) {
  for (const char* const other : {"_mean", "_stddev", "_cv"})
    if (EndsWith(name, other)) return false;
  constexpr const char* Median = "_median";
  if (EndsWith(name, Median)) name.resize(name.size() - std::string(Median).size());
  for (const char* const setting : {"/iterations:", "/repeats:", "/real_time"})
    name = name.substr(0, name.find(setting));
  const std::size_t slash = name.rfind('/');
  if (slash == std::string::npos) return false;
  figure.workload = name.substr(0, slash);
  figure.who = name.substr(slash + 1);
  return true;
}

double NumberOf(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

// Time is asked for in nanoseconds; where a round did many pieces of work, their rate counts.
bool ReadValue(std::map<std::string, std::string>& row, Figure& figure) {
  figure.isBytes = !row["bytes"].empty();
  if (figure.isBytes) {
    figure.value = NumberOf(row["bytes"]);
  } else if (!row["items_per_second"].empty()) {
    figure.value = 1e9 / NumberOf(row["items_per_second"]);
  } else {
    figure.value = NumberOf(row["cpu_time"]);
  }
  return row["error_occurred"].empty() && row["time_unit"] == "ns";
}

bool NaturallyLess(const std::string& left, const std::string& right) {
  const auto isDigit = [](char character) {
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
  };
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < left.size() && j < right.size()) {
    if (isDigit(left[i]) && isDigit(right[j])) {
      char* leftEnd = nullptr;
      char* rightEnd = nullptr;
      const double leftNumber = std::strtod(&left[i], &leftEnd);
      const double rightNumber = std::strtod(&right[j], &rightEnd);
      if (leftNumber != rightNumber) return leftNumber < rightNumber;
      i = static_cast<std::size_t>(leftEnd - left.data());
      j = static_cast<std::size_t>(rightEnd - right.data());
      continue;
    }
    if (left[i] != right[j]) return left[i] < right[j];
    ++i;
    ++j;
  }
  return left.size() - i < right.size() - j;
}

}  // namespace

bool ReadFigures(const char* path, std::vector<Figure>& figures) {
  std::ifstream file(path);
  if (!file) return false;
  Fields head;
  std::vector<Figure> read;
  for (std::string line; std::getline(file, line);) {
    const Fields fields = FieldsOf(line);
    // The library writes what it knows of the machine first.
    if (fields[0] == "name") head = fields;
    if (head.empty() || fields[0] == "name" || fields.size() != head.size()) continue;
    std::map<std::string, std::string> row;
    for (std::size_t i = 0; i < head.size(); ++i)
      row[head[i]] = fields[i];
    Figure figure;
    if (!ReadName(row["name"], figure)) continue;
    if (!ReadValue(row, figure)) return false;
    read.push_back(figure);
  }
  std::stable_sort(read.begin(), read.end(), [](const Figure& left, const Figure& right) {
    return NaturallyLess(left.workload, right.workload);
  });
  figures.insert(figures.end(), read.begin(), read.end());
  return true;
}

}  // namespace kvlbench
