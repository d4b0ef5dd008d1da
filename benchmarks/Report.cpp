#include "Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Contest.h"

namespace Contest {
namespace {

constexpr char us[] = "VXFoundation";
bool isOurs(const std::string& contestant) { return contestant.starts_with(us); }

std::string sizeName(std::size_t size) {
  if (size >= 1 << 20) return std::to_string(size >> 20) + " MiB";
  return size >= 1 << 10 ? std::to_string(size >> 10) + " KiB" : std::to_string(size) + " B";
}

/// The time of a call for short inputs, the speed for long ones.
std::string figure(double speed, std::size_t size) {
  char text[32];
  if (size < 1024)
    std::snprintf(text, sizeof text, "%.0f ns", static_cast<double>(size) / speed);
  else
    std::snprintf(text, sizeof text, speed < 10 ? "%.2f" : "%.1f", speed);
  return text;
}

double speedOf(const std::map<std::size_t, double>& bySize, std::size_t size) {
  const auto found = bySize.find(size);
  return found == bySize.end() ? 0 : found->second;
}

}  // namespace

void Report::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    const std::string name = run.run_name.function_name;
    const std::size_t first = name.find('/'), last = name.rfind('/');
    Speeds& speeds = operations_[name.substr(0, first)];
    double& best = speeds[name.substr(first + 1, last - first - 1)][std::stoul(name.substr(last + 1))];
    best = std::max(best, run.counters.at("bytes_per_second").value / 1e9);
  }
}

std::pair<std::string, double> Report::bestPeer(const Speeds& speeds, std::size_t size) {
  std::pair<std::string, double> best;
  for (const auto& [contestant, bySize] : speeds)
    if (!isOurs(contestant) && contestant != "memcpy" && speedOf(bySize, size) > best.second)
      best = {contestant, speedOf(bySize, size)};
  return best;
}

void Report::printTable(std::ostream& out, const std::string& operation, const Speeds& speeds) {
  out << "\n### " << operation << "\n\n| |";
  for (const auto& column : speeds) out << " " << column.first << " |";
  out << " to best peer |\n|---|";
  for (std::size_t i = 0; i <= speeds.size(); ++i) out << "---|";
  out << "\n";
  for (const std::size_t size : sizes) {
    out << "| " << sizeName(size) << " |";
    for (const auto& column : speeds) out << " " << figure(speedOf(column.second, size), size) << " |";
    char ratio[32] = "";
    const auto own = speeds.find(us);
    const double peer = bestPeer(speeds, size).second;
    if (own != speeds.end() && peer > 0)
      std::snprintf(ratio, sizeof ratio, "%.2f", speedOf(own->second, size) / peer);
    out << " " << ratio << " |\n";
  }
}

void Report::printTables(std::ostream& out) const {
  out << "GB/s of input (32 B: time of a call); best of all rounds; our result object included.\n"
         "\"*\" marks a peer that skips checks which we make.\n";
  for (const auto& [operation, speeds] : operations_) printTable(out, operation, speeds);
}

void Report::drawChart(std::ostream& out) const {
  constexpr std::size_t size = 64 << 10;
  constexpr double left = 190, unit = 190, row = 46;  // a factor of ten is one unit wide
  const auto bar = [&](double y, double speed, const char* colour, const std::string& label) {
    const double length = std::max(2.0, unit * (std::log10(std::max(speed, 0.1)) + 1));
    out << "<rect x='" << left << "' y='" << y << "' width='" << length << "' height='13' fill='" << colour
        << "'/><text x='" << left + length + 5 << "' y='" << y + 11 << "'>" << label << " "
        << figure(speed, size) << "</text>\n";
  };
  const double height = row * static_cast<double>(operations_.size()) + 40;
  out << "<svg xmlns='http://www.w3.org/2000/svg' width='960' height='" << height
      << "' font-family='sans-serif' font-size='12'>\n<rect width='100%' height='100%' fill='white'/>\n"
      << "<text x='10' y='20'>GB/s of input at 64 KiB, logarithmic; longer is faster</text>\n";
  double y = 34;
  for (const auto& [operation, speeds] : operations_) {
    out << "<text x='10' y='" << y + 20 << "'>" << operation << "</text>\n";
    const auto [peer, speed] = bestPeer(speeds, size);
    if (const auto own = speeds.find(us); own != speeds.end())
      bar(y, speedOf(own->second, size), "#2a6fbb", us);
    if (speed > 0) bar(y + 15, speed, "#b0b0b0", peer);
    if (const auto copy = speeds.find("memcpy"); copy != speeds.end())
      bar(y, speedOf(copy->second, size), "#d9b44a", "memcpy");
    y += row;
  }
  out << "</svg>\n";
}

}  // namespace Contest
