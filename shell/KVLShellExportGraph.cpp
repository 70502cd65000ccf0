#include "KVLShellExportGraph.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "KVLShellExportText.h"

namespace {

// In units of the picture, at which its text is 13 high.
constexpr int Top = 34;  // the middle of the first row
constexpr int RowHeight = 24;
constexpr int CharacterWidth = 8;
constexpr int DotGap = 9;
constexpr int Middle = 160;               // between the two columns of texts
constexpr std::size_t ShortestLabel = 6;  // characters that there is room for
constexpr std::size_t LongestLabel = 17;

constexpr int NbSweeps = 12;
constexpr std::size_t MostOrdered = 1000;  // more lines are not readable in any order

using Edge = std::pair<std::size_t, std::size_t>;  // numbers of types

struct Column {
  std::vector<std::size_t> types;  // from top to bottom
  std::vector<double> heights;     // in rows, by type
};

// Places the column's types at even distances, in the middle of `nbRows`.
void Place(Column& column, std::size_t nbRows) {
  const double first = static_cast<double>(nbRows - column.types.size()) / 2;
  for (std::size_t i = 0; i < column.types.size(); ++i)
    column.heights[column.types[i]] = first + static_cast<double>(i);
}

// Orders the column by the mean height of what each type is tied to on the other side.
void OrderBy(const Column& other, const std::vector<Edge>& edges, bool isLeft, std::size_t nbRows,
             Column& column) {
  std::vector<std::pair<double, int>> sums(column.heights.size());
  for (const Edge& edge : edges) {
    auto& [sum, count] = sums[isLeft ? edge.first : edge.second];
    sum += other.heights[isLeft ? edge.second : edge.first];
    ++count;
  }
  const auto mean = [&](std::size_t type) { return sums[type].first / sums[type].second; };
  std::stable_sort(column.types.begin(), column.types.end(),
                   [&](std::size_t a, std::size_t b) { return mean(a) < mean(b); });
  Place(column, nbRows);
}

std::size_t NbCrossings(const Column& left, const Column& right, const std::vector<Edge>& edges) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      const double atLeft = left.heights[edges[i].first] - left.heights[edges[k].first];
      const double atRight = right.heights[edges[i].second] - right.heights[edges[k].second];
      if (atLeft * atRight < 0) ++count;
    }
  }
  return count;
}

// The places where the characters of a UTF-8 text begin.
std::vector<std::size_t> CharacterStarts(const std::string& text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i)
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
  return starts;
}

std::string Label(const std::string& typeName) {
  const std::string text = KVLShellUtf8(typeName);
  const std::vector<std::size_t> starts = CharacterStarts(text);
  if (starts.size() <= LongestLabel) return KVLShellHtmlText(text);
  return KVLShellHtmlText(text.substr(0, starts[LongestLabel - 1])) + "\xE2\x80\xA6";
}

int Y(double row) {
  return Top + static_cast<int>(row * RowHeight + 0.5);
}

class Drawing {
 public:
  Drawing(const std::vector<KVLShellModelConversion>& conversions,
          const std::function<std::string(const std::string& typeName)>& typeTarget)
      : targetOf(typeTarget) {
    for (const KVLShellModelConversion& conversion : conversions)
      edges.emplace_back(NumberOf(conversion.from), NumberOf(conversion.to));
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    std::size_t longest = ShortestLabel;
    for (const std::string& name : names)
      longest = std::max(longest, CharacterStarts(KVLShellUtf8(name)).size());
    leftEnd = static_cast<int>(std::min(longest, LongestLabel)) * CharacterWidth + 2;
    rightStart = leftEnd + Middle;
    Arrange();
  }

  std::string Svg() const {
    std::string svg = "<svg class=\"graph\" viewBox=\"0 0 " + std::to_string(rightStart + leftEnd) +
                      " " + std::to_string(Y(static_cast<double>(nbRows))) +
                      "\" role=\"group\" aria-label=\"Conversions, from the types on the left to "
                      "those on the right\">\n";
    svg += "<text class=\"head\" x=\"" + std::to_string(leftEnd) +
           "\" y=\"14\" text-anchor=\"end\">from</text><text class=\"head\" x=\"" +
           std::to_string(rightStart) + "\" y=\"14\">to</text>\n";
    svg += "<g aria-hidden=\"true\">\n";
    for (const Edge& edge : edges)
      svg += Line(edge);
    svg += "</g>\n";
    for (const std::size_t type : left.types)
      svg += Node(type, true);
    for (const std::size_t type : right.types)
      svg += Node(type, false);
    return svg + "</svg>\n";
  }

 private:
  std::size_t NumberOf(const std::string& typeName) {
    const auto [entry, isNew] = numbers.emplace(typeName, names.size());
    if (isNew) names.push_back(typeName);
    return entry->second;
  }

  void Arrange() {
    std::set<std::size_t> sources;
    std::set<std::size_t> targets;
    for (const Edge& edge : edges) {
      sources.insert(edge.first);
      targets.insert(edge.second);
    }
    const auto byName = [&](std::size_t a, std::size_t b) { return names[a] < names[b]; };
    left.types.assign(sources.begin(), sources.end());
    right.types.assign(targets.begin(), targets.end());
    std::sort(left.types.begin(), left.types.end(), byName);
    std::sort(right.types.begin(), right.types.end(), byName);
    nbRows = std::max(left.types.size(), right.types.size());
    left.heights.resize(names.size());
    right.heights.resize(names.size());
    Place(left, nbRows);
    Place(right, nbRows);
    if (edges.size() > MostOrdered) return;

    Column bestLeft = left;
    Column bestRight = right;
    std::size_t fewest = NbCrossings(left, right, edges);
    for (int sweep = 0; sweep < NbSweeps; ++sweep) {
      OrderBy(left, edges, false, nbRows, right);
      OrderBy(right, edges, true, nbRows, left);
      const std::size_t count = NbCrossings(left, right, edges);
      if (count >= fewest) continue;
      fewest = count;
      bestLeft = left;
      bestRight = right;
    }
    left = std::move(bestLeft);
    right = std::move(bestRight);
  }

  std::string Line(const Edge& edge) const {
    const std::string y1 = std::to_string(Y(left.heights[edge.first]));
    const std::string y2 = std::to_string(Y(right.heights[edge.second]));
    const int x1 = leftEnd + DotGap;
    const int x2 = rightStart - DotGap;
    const std::string middle = std::to_string((x1 + x2) / 2);
    return "<path data-from=\"" + std::to_string(edge.first) + "\" data-to=\"" +
           std::to_string(edge.second) + "\" d=\"M" + std::to_string(x1) + " " + y1 + "C" + middle +
           " " + y1 + " " + middle + " " + y2 + " " + std::to_string(x2) + " " + y2 + "\"/>\n";
  }

  std::string Partners(std::size_t type, bool isSource) const {
    std::string partners;
    for (const Edge& edge : edges) {
      if ((isSource ? edge.first : edge.second) != type) continue;
      partners += (partners.empty() ? "" : ", ") + names[isSource ? edge.second : edge.first];
    }
    return partners;
  }

  std::string Node(std::size_t type, bool isSource) const {
    const int y = Y((isSource ? left : right).heights[type]);
    const int x = isSource ? leftEnd : rightStart;
    const int dot = isSource ? leftEnd + DotGap : rightStart - DotGap;
    const std::string told =
        names[type] + (isSource ? ", converts to " : ", converts from ") + Partners(type, isSource);
    const std::string target = targetOf(names[type]);
    std::string node = "<a tabindex=\"0\" data-side=\"";
    node += isSource ? "from" : "to";
    node += "\" data-node=\"" + std::to_string(type) + "\" aria-label=\"" + KVLShellHtmlText(told) +
            "\"" + (target.empty() ? "" : " href=\"" + KVLShellHtmlText(target) + "\"") +
            "><title>" + KVLShellHtmlText(told) + "</title><text x=\"" + std::to_string(x) +
            "\" y=\"" + std::to_string(y + 4) + "\"" + (isSource ? " text-anchor=\"end\"" : "") +
            ">" + Label(names[type]) + "</text><circle cx=\"" + std::to_string(dot) + "\" cy=\"" +
            std::to_string(y) + "\" r=\"3\"/></a>\n";
    return node;
  }

  const std::function<std::string(const std::string& typeName)>& targetOf;
  std::vector<std::string> names;  // of the types, by number
  std::map<std::string, std::size_t> numbers;
  std::vector<Edge> edges;
  int leftEnd = 0;     // where the texts on the left end
  int rightStart = 0;  // where those on the right begin
  std::size_t nbRows = 0;
  Column left;
  Column right;
};

}  // namespace

std::string KVLShellExportGraph(
    const std::vector<KVLShellModelConversion>& conversions,
    const std::function<std::string(const std::string& typeName)>& targetOf) {
  return conversions.empty() ? "" : Drawing(conversions, targetOf).Svg();
}
