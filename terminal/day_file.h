#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "terminal/day.h"
#include "terminal/input_file.h"

namespace iorder {

/// Reads a day file and checks all of it; of the tick files that it names, that they are there and that their
/// columns are known. Every mistake is an InputError "FILE:LINE: what".
Day ReadDayFile(const std::string& path);

/// The same of any text in lines, but the tick files that it names aren't looked for: no other file is
/// touched.
Day ReadDayText(CLineReader reader);

/// Puts a command into a day, behind the lines of the same time, or, without a time, at the start (after
/// phase 2 of automatic phases). A time before the day's start, or behind its end, is an InputError.
void InsertCommand(Day& day, std::string_view text, std::optional<LocalTime> at);

/// The path of a file that another file names: relative to the folder of that other file.
std::string PathBeside(const std::string& file, const std::string& path);

}  // namespace iorder
