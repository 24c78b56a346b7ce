#pragma once

#include <string>

#include "terminal/local_time.h"

namespace iorder {

/// "YYYY-MM-DDTHH:MM:SS", with ".mmm" where there are milliseconds.
inline std::string TimeText(LocalTime time) {
  std::string text = ToText(time);
  if (text.ends_with(".000")) text.resize(text.size() - 4);
  return text;
}

}  // namespace iorder
