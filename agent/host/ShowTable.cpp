#include "host/ShowTable.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace mirrorlag_agent {

namespace {

constexpr std::size_t columnGap = 2;

// A cell as it is printed: text without quotes, a list as its items.
std::string cellText(const nlohmann::json& cell) {
  if (cell.is_string())
    return cell.get<std::string>();
  if (cell.is_array()) {
    std::string text;
    for (const nlohmann::json& item : cell)
      text += (text.empty() ? "" : " ") + cellText(item);
    return text.empty() ? "-" : text;
  }
  if (cell.is_null())
    return "-";
  return cell.dump();
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// The line of `cells`, each padded to its column's width but the last.
std::string lineOf(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    line += cells[i];
    if (i + 1 < cells.size())
      line.append(widths[i] + columnGap - cells[i].size(), ' ');
  }
  return line + "\n";
}

}  // namespace

ShowTable::ShowTable(std::vector<std::string> columns) : columns_(std::move(columns)) {}

void ShowTable::rowIs(std::vector<nlohmann::json> cells) {
  if (cells.size() != columns_.size())
    throw std::logic_error("a row of " + std::to_string(cells.size()) + " cells for " +
                           std::to_string(columns_.size()) + " columns");
  rows_.push_back(std::move(cells));
}

std::string ShowTable::text() const {
  std::vector<std::vector<std::string>> lines{columns_};
  for (const auto& row : rows_) {
    std::vector<std::string> cells;
    for (const nlohmann::json& cell : row)
      cells.push_back(cellText(cell));
    lines.push_back(std::move(cells));
  }
  std::vector<std::size_t> widths(columns_.size(), 0);
  for (const auto& cells : lines) {
    for (std::size_t i = 0; i < cells.size(); ++i)
      widths[i] = std::max(widths[i], cells[i].size());
  }
  std::string text;
  for (const auto& cells : lines)
    text += lineOf(cells, widths);
  return text;
}

nlohmann::ordered_json ShowTable::json() const {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const auto& row : rows_) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < columns_.size(); ++i)
      object[lowerCase(columns_[i])] = row[i];
    rows.push_back(std::move(object));
  }
  return rows;
}

}  // namespace mirrorlag_agent
