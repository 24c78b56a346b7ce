#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/local_moment.h"
#include "app/output_file.h"

namespace iorder {

/// One trade as a row of a tick file. Prices are decimal texts.
struct TradeRow {
  LocalMoment at{};
  std::string_view symbol;
  std::string_view price;
  int64_t quantity = 0;
  int64_t volume = 0;     ///< lots of the session, this trade included
  std::string_view open;  ///< the opening price, with the first trade of a series; else empty
};

/// Writes a tick file. Rows come in order of time. Raises what COutputFile raises.
class CTickWriter {
 public:
  explicit CTickWriter(const std::filesystem::path& path);

  void Append(const TradeRow& row);
  void Commit();

 private:
  void AppendTime(LocalMoment at);
  void Flush();

  COutputFile m_file;
  std::string m_text;  ///< rows that are gathered to a large piece
  std::chrono::local_days m_date{};
  bool m_hasDate = false;
};

}  // namespace iorder
