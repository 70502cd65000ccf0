#include "Curve.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace kvlbench {

namespace {

struct Point {
  double n;
  double nanoseconds;
};

struct Line {
  std::string who;
  std::vector<Point> points;
};

/// One picture: a workload, a line for each who did it.
struct Panel {
  std::string workload;
  std::vector<Line> lines;
};

template <class Named>
Named& FindOrAdd(std::vector<Named>& list, std::string Named::*nameField, const std::string& name) {
  for (Named& element : list)
    if (element.*nameField == name) return element;
  list.emplace_back();
  list.back().*nameField = name;
  return list.back();
}

std::vector<Panel> PanelsOf(const std::vector<Figure>& figures) {
  const std::string mark = ", N = ";
  std::vector<Panel> panels;
  for (const Figure& figure : figures) {
    const std::size_t place = figure.workload.find(mark);
    if (place == std::string::npos || figure.isBytes) continue;
    Panel& panel = FindOrAdd(panels, &Panel::workload, figure.workload.substr(0, place));
    Line& line = FindOrAdd(panel.lines, &Line::who, figure.who);
    const double n = std::strtod(figure.workload.c_str() + place + mark.size(), nullptr);
    line.points.push_back({n, figure.value});
  }
  for (Panel& panel : panels) {
    std::sort(panel.lines.begin(), panel.lines.end(),
              [](const Line& left, const Line& right) { return left.who < right.who; });
  }
  return panels;
}

void WriteCsv(const std::vector<Panel>& panels, std::ostream& file) {
  file << "workload,who,N,nanoseconds\n";
  for (const Panel& panel : panels) {
    for (const Line& line : panel.lines) {
      for (const Point& point : line.points)
        file << panel.workload << ',' << line.who << ',' << point.n << ',' << point.nanoseconds
             << '\n';
    }
  }
}

// Both axes are logarithmic, the same in every panel; lengths are in the picture's units.
constexpr double PanelWidth = 460;
constexpr double PanelHeight = 330;
constexpr double Left = 60;
constexpr double Right = 34;
constexpr double Top = 40;
constexpr double Bottom = 50;

struct Axes {
  // In powers of ten.
  double lowN = 2;
  double highN = 6;
  double lowCost = 0;
  double highCost = 4;

  double X(double n) const {
    return Left + (std::log10(n) - lowN) / (highN - lowN) * (PanelWidth - Left - Right);
  }
  double Y(double cost) const {
    const double height = PanelHeight - Top - Bottom;
    return Top + height - (std::log10(cost) - lowCost) / (highCost - lowCost) * height;
  }
};

Axes AxesOf(const std::vector<Panel>& panels) {
  double least = 10;
  double most = 100;
  for (const Panel& panel : panels) {
    for (const Line& line : panel.lines) {
      for (const Point& point : line.points) {
        least = std::min(least, point.nanoseconds);
        most = std::max(most, point.nanoseconds);
      }
    }
  }
  Axes axes;
  axes.lowCost = std::floor(std::log10(least));
  axes.highCost = std::ceil(std::log10(most));
  return axes;
}

const char* ColourOf(const std::string& who, std::size_t place) {
  constexpr const char* Peers[] = {"#1f77b4", "#2ca02c", "#9467bd", "#8c564b"};
  if (who == "ours") return "#d62728";
  if (who == "floor") return "#7f7f7f";
  return Peers[place % 4];
}

void WriteText(std::ostream& file, double x, double y, const char* anchor,
               const std::string& text) {
  file << "<text x='" << x << "' y='" << y << "' text-anchor='" << anchor << "'>" << text
       << "</text>\n";
}

void WriteGrid(std::ostream& file, const Axes& axes) {
  for (double power = axes.lowN; power <= axes.highN; ++power) {
    const double x = axes.X(std::pow(10, power));
    file << "<path class='grid' d='M" << x << ' ' << Top << 'V' << PanelHeight - Bottom << "'/>\n";
    WriteText(file, x, PanelHeight - Bottom + 16, "middle",
              std::to_string(std::lround(std::pow(10, power))));
  }
  for (double power = axes.lowCost; power <= axes.highCost; ++power) {
    const double y = axes.Y(std::pow(10, power));
    file << "<path class='grid' d='M" << Left << ' ' << y << 'H' << PanelWidth - Right << "'/>\n";
    WriteText(file, Left - 6, y + 4, "end", std::to_string(std::lround(std::pow(10, power))));
  }
  WriteText(file, PanelWidth / 2, PanelHeight - Bottom + 36, "middle", "entries");
}

void WritePanel(std::ostream& file, const Panel& panel, const Axes& axes) {
  WriteText(file, Left, Top - 16, "start", panel.workload + ", ns");
  WriteGrid(file, axes);
  for (std::size_t i = 0; i < panel.lines.size(); ++i) {
    const Line& line = panel.lines[i];
    const char* const colour = ColourOf(line.who, i);
    file << "<polyline stroke='" << colour << "' points='";
    for (const Point& point : line.points)
      file << axes.X(point.n) << ',' << axes.Y(point.nanoseconds) << ' ';
    file << "'/>\n<g fill='" << colour << "'>";
    WriteText(file, Left + 8, Top + 14 + 15 * static_cast<double>(i), "start", line.who);
    file << "</g>\n";
  }
}

void WriteSvg(const std::vector<Panel>& panels, std::ostream& file) {
  const std::size_t nbRows = (panels.size() + 1) / 2;
  file << "<svg xmlns='http://www.w3.org/2000/svg' width='" << 2 * PanelWidth << "' height='"
       << static_cast<double>(nbRows) * PanelHeight
       << "' font-family='sans-serif' font-size='12'>\n"
          "<style>polyline{fill:none;stroke-width:2}.grid{stroke:#ddd}</style>\n"
          "<rect width='100%' height='100%' fill='white'/>\n";
  const Axes axes = AxesOf(panels);
  for (std::size_t i = 0; i < panels.size(); ++i) {
    file << "<g transform='translate(" << static_cast<double>(i % 2) * PanelWidth << ' '
         << static_cast<double>(i / 2) * PanelHeight << ")'>\n";
    WritePanel(file, panels[i], axes);
    file << "</g>\n";
  }
  file << "</svg>\n";
}

}  // namespace

bool WriteCurves(const std::vector<Figure>& figures, const std::string& folder) {
  const std::vector<Panel> panels = PanelsOf(figures);
  std::ofstream csv(folder + "/curve.csv");
  WriteCsv(panels, csv);
  std::ofstream svg(folder + "/curve.svg");
  WriteSvg(panels, svg);
  return static_cast<bool>(csv.flush()) && static_cast<bool>(svg.flush());
}

}  // namespace kvlbench
