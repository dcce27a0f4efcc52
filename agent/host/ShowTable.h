#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace mirrorlag_agent {

// One table that the agent's `show` commands print: named columns and rows of
// values (numbers, text, lists). text() aligns the columns under a header
// line, a list printed as its items separated by spaces; json() gives an array
// with one object per row, keyed by the column names in lower case, in
// column order.
//
//   ShowTable table({"ID", "SELECTOR"});
//   table.rowIs({1, 10});
//   table.text();  // "ID  SELECTOR\n1   10\n"
class ShowTable {
 public:
  explicit ShowTable(std::vector<std::string> columns);

  void rowIs(std::vector<nlohmann::json> cells);

  std::size_t rows() const noexcept { return rows_.size(); }
  std::string text() const;
  nlohmann::ordered_json json() const;

 private:
  std::vector<std::string> columns_;
  std::vector<std::vector<nlohmann::json>> rows_;
};

}  // namespace mirrorlag_agent
