#pragma once

#include <string>

#include "app/happening.h"

namespace iorder {

/// A group order as lines name it: "group order HEDGE", with its number where its id is used again.
std::string GroupOrderWords(const GroupOrderName& order);

/// A figure of an option as a condition of a leg spells it: Delta, which the bus keeps on a scale of 100, as
/// 0.25.
std::string FigureText(const std::string& field, ScaledValue figure);

/// The state of a child order in words.
std::string ChildStateWords(int32_t state);

/// Why a group order won't go on, or is gone.
std::string EndWords(GroupOrderEnd end);

/// Behind the side, lots and symbol of an order that is part of a group order: how it is priced, and what it
/// is part of.
std::string GroupStringWords(const GroupString& string);

// One readable line each, without its time and end.
std::string Words(const GroupOrderLooked& look);
std::string Words(const GroupCycleMade& cycle);
std::string Words(const GroupLegChosen& leg);
std::string Words(const GroupChildAnnounced& child);
std::string Words(const GroupChildChanged& child);
std::string Words(const GroupLookPlanned& look);
std::string Words(const GroupLookPassed& look);
std::string Words(const GroupOrderEnded& ended);

}  // namespace iorder
