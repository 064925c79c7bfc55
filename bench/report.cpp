#include "report.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace vestra_bench {
namespace {

constexpr int WHAT = 58;
constexpr int BESIDE = 44;
constexpr int FIGURE = 8;
constexpr int SPREAD = 17;

std::string figure(double value) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << value;
  return text.str();
}

std::string goalOf(const Row& row) { return row.goal ? figure(*row.goal) : "-"; }

std::string verdict(const Row& row) {
  if (!row.goal) {
    return "-";
  }
  return row.isMet() ? "yes" : "NO";
}

void writeCells(std::ostream& out, const std::string& what, const std::string& beside,
                const std::string& goal, const std::string& median, const std::string& quartiles,
                const std::string& met) {
  out << std::left << std::setw(WHAT) << what << std::setw(BESIDE) << beside << std::right
      << std::setw(FIGURE) << goal << std::setw(FIGURE) << median << std::setw(SPREAD) << quartiles << "  "
      << met << std::endl;
}

}  // namespace

void writeHeading(std::ostream& out) {
  writeCells(out, "what", "beside", "at most", "median", "quartiles", "met");
}

void writeRow(std::ostream& out, const Row& row) {
  const std::string quartiles = figure(row.figure.lowerQuartile) + " - " + figure(row.figure.upperQuartile);
  writeCells(out, row.what, row.beside, goalOf(row), figure(row.figure.median), quartiles, verdict(row));
}

void writeJson(std::ostream& out, const std::vector<Row>& rows) {
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const Row& row : rows) {
    nlohmann::ordered_json one;
    one["what"] = row.what;
    one["beside"] = row.beside;
    one["goal"] = row.goal ? nlohmann::ordered_json(*row.goal) : nlohmann::ordered_json();
    one["median"] = row.figure.median;
    one["lower_quartile"] = row.figure.lowerQuartile;
    one["upper_quartile"] = row.figure.upperQuartile;
    one["rounds"] = row.figure.rounds;
    one["met"] = row.isMet();
    all.push_back(one);
  }
  out << all.dump(2) << '\n';
}

}  // namespace vestra_bench
