#pragma once

#include <filesystem>
#include <set>
#include <string>

#include "app/day_writer.h"
#include "app/import/taifex_series.h"
#include "app/import/taifex_session.h"

namespace iorder {

/// What an imported day's head and setup are made of.
struct TaifexDay {
  TaifexSessionDate date;
  std::set<TaifexSeries> series;  ///< every option and future that the day lists
  std::string brokerId;
  std::string account;
  std::string fill;  ///< how orders are filled; empty: nobody answers them by itself
};

/// Begins a day file: the head, the clock running from 15 minutes before the session to 15 minutes after it;
/// settings with the options' underlyings; symbols; hot months; contract attributes; the account; one quote
/// without prices per series.
CDayWriter WriteTaifexDay(const std::filesystem::path& path, const TaifexDay& day);

}  // namespace iorder
