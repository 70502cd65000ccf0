// bench_report FOLDER FILE...: prints the table of the figures in these CSV files, in the order of
// the files, and writes the curves into the folder.

#include <cstdio>
#include <cstdlib>

#include "Curve.h"
#include "Figures.h"

namespace {

using kvlbench::Figure;

/// A line of the table; null where nobody did it.
struct Row {
  const Figure* ours = nullptr;
  const Figure* bestPeer = nullptr;
  const Figure* floor = nullptr;
  std::vector<const Figure*> peers;
};

std::string Text(const Figure* figure) {
  if (!figure) return "-";
  double value = figure->value;
  const char* unit = figure->isBytes ? " B" : " ns";
  if (!figure->isBytes) {
    for (const char* const larger : {" us", " ms", " s"}) {
      if (value < 9999.5) break;
      value /= 1000;
      unit = larger;
    }
  }
  char number[32];
  std::snprintf(number, sizeof(number), value < 10 ? "%.1f" : "%.0f", value);
  return number + std::string(unit);
}

std::string TextOfPeer(const Figure* figure) {
  return figure ? Text(figure) + " (" + figure->who + ")" : "-";
}

std::string TextOfOthers(const Row& row) {
  std::string text;
  for (const Figure* const peer : row.peers) {
    if (peer == row.bestPeer) continue;
    if (!text.empty()) text += ", ";
    text += TextOfPeer(peer);
  }
  return text;
}

std::string Ratio(const Row& row) {
  if (!row.ours || !row.bestPeer) return "-";
  char number[32];
  std::snprintf(number, sizeof(number), "%.2f", row.ours->value / row.bestPeer->value);
  return number;
}

void Place(const Figure& figure, Row& row) {
  if (figure.who == "ours") {
    row.ours = &figure;
  } else if (figure.who == "floor") {
    row.floor = &figure;
  } else {
    row.peers.push_back(&figure);
    if (!row.bestPeer || figure.value < row.bestPeer->value) row.bestPeer = &figure;
  }
}

void PrintLine(const std::string& workload, const std::string& ours, const std::string& peer,
               const std::string& ratio, const std::string& floor, const std::string& others) {
  std::printf("| %-29s | %9s | %-26s | %6s | %9s | %-25s |\n", workload.c_str(), ours.c_str(),
              peer.c_str(), ratio.c_str(), floor.c_str(), others.c_str());
}

void PrintTable(const std::vector<Figure>& figures) {
  PrintLine("workload", "ours", "best peer", "ratio", "floor", "other peers");
  PrintLine("---", "---:", "---", "---:", "---:", "---");
  for (std::size_t i = 0; i < figures.size();) {
    const std::string& workload = figures[i].workload;
    Row row;
    for (; i < figures.size() && figures[i].workload == workload; ++i)
      Place(figures[i], row);
    PrintLine(workload, Text(row.ours), TextOfPeer(row.bestPeer), Ratio(row), Text(row.floor),
              TextOfOthers(row));
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Figure> figures;
  for (int i = 2; i < argc; ++i) {
    if (kvlbench::ReadFigures(argv[i], figures)) continue;
    std::fprintf(stderr, "bench_report: cannot use %s\n", argv[i]);
    return EXIT_FAILURE;
  }
  PrintTable(figures);
  if (argc < 2 || !kvlbench::WriteCurves(figures, argv[1])) {
    std::fprintf(stderr, "bench_report: cannot write the curves\n");
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
