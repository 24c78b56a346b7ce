#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "app/happening.h"
#include "app/object_writer.h"

namespace iorder {

/// What a day's positions and tags came to, gathered from its happenings.
class CPositionTotals {
 public:
  struct Row {
    PositionChanged position;
    std::optional<double> last;  ///< that it was valued at
    int64_t weight = 1;

    /// Money; 0 for what isn't known.
    double Realised() const;
    double Open() const;
    double Cost() const;
  };

  void Add(const Happening& happening);

  /// By strategy, life, run and symbol.
  const auto& Rows() const { return m_rows; }

  /// The closing tables of positions and tags; "" if there was none.
  std::string Table() const;
  /// The members "positions" and "tags" of the closing object.
  void WriteJson(CObjectWriter& writer) const;

 private:
  using Key = std::tuple<std::string, int64_t, std::string, std::string>;

  std::string PositionTable() const;
  std::string TagTable() const;

  std::map<Key, Row> m_rows;
  std::map<std::string, int64_t> m_weights;  ///< by symbol
  std::map<std::string, TagTotalChanged> m_tags;
};

}  // namespace iorder
