#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "grouporder/group_order_watch.h"
#include "records/scaled_value.h"

namespace iorder {

/// Which group order: its strategy id, and its number among all group orders of the engine, from 1 (0: not
/// known).
struct GroupOrderName {
  std::string id;
  int64_t number = 0;
  bool isIdShared = false;  ///< another group order had the same id before
};

/// What an order string of a group order is part of.
struct GroupString {
  GroupOrderName order;
  size_t leg = 0;        ///< from 1; 0: not known
  bool offsets = false;  ///< closes what is held, rather than opening the chosen option
  std::string groupId;   ///< empty if the string names no group, as all of a leg but the last
  std::string group;     ///< the group's letter, A or B; empty: none, or not known
  std::string chase;     ///< how it is priced anew towards the market; empty: it isn't
};

/// The stop condition was looked at.
struct GroupOrderLooked {
  GroupOrderName order;
  std::string field;          ///< that is summed over the position
  std::optional<double> sum;  ///< times the factor; none: there is no position
  double factor = 1;
  double target = 0;
  std::optional<bool> mustRise;  ///< else it must fall; none: at the target from the beginning
  bool isDone = false;
};

/// A check condition: its value, and the band in which it is at rest, both ends included.
struct GroupCheck {
  int number = 1;  ///< the first or the second of the command
  std::string field;
  double value = 0;
  double low = 0;
  double high = 0;
  bool isOut = false;
};

/// A cycle looked at the chain and made its strings. It goes before its legs, and these before its orders.
struct GroupCycleMade {
  GroupOrderName order;
  int64_t cycle = 0;  ///< of this order, from 1
  std::optional<double> sum;
  double target = 0;
  std::vector<GroupCheck> checks;  ///< those that the command tells
  size_t doubledLeg = 0;           ///< from 1; 0: none
  size_t orders = 0;               ///< strings that it made
  int64_t lots = 0;                ///< of all of them
};

/// An option that a leg looked at.
struct GroupCandidate {
  std::string symbol;
  ScaledValue figure = NoValue;  ///< NoValue: the option has no figure yet
  int64_t distance = 0;          ///< as it competes: it may have wrapped
  bool isWrapped = false;

  /// Whether the distance says how far off the figure is, and not only how it competes.
  bool HasDistance() const { return figure != NoValue && !isWrapped; }
};

/// So many lots of a symbol.
struct GroupLots {
  std::string symbol;
  int64_t lots = 0;
  std::string side;  ///< of what is held: B or S
};

/// What a leg came to in a cycle.
struct GroupLegChosen {
  GroupOrderName order;
  int64_t cycle = 0;
  size_t leg = 0;     ///< from 1
  std::string right;  ///< as the command spells it
  std::string side;   ///< B or S
  int64_t lots = 0;
  bool isDoubled = false;
  std::string field;
  ScaledValue wanted = 0;
  std::string symbol;                   ///< the chosen option; empty: none was found
  std::optional<GroupCandidate> found;  ///< what it was chosen by; none: kept from an earlier cycle
  std::vector<GroupCandidate> next;     ///< the two that come next
  size_t candidates = 0;                ///< options that it looked at
  size_t withoutFigure = 0;             ///< those of them that have none yet
  std::vector<GroupLots> held;          ///< positions that lie nearest to this leg
  std::vector<GroupLots> offsets;       ///< what its strings take from them
  int64_t opens = 0;                    ///< lots of the chosen option
};

/// The host announced a child order.
struct GroupChildAnnounced {
  GroupOrderName order;
  std::string child;
  size_t live = 0;
};

/// A child order changed.
struct GroupChildChanged {
  GroupOrderName order;
  std::string child;
  int32_t state = 0;   ///< "ExecType"; NoInt: it names none
  size_t live = 0;     ///< children that have not ended
  bool fails = false;  ///< this is why the group order won't go on
};

/// When the stop condition will be looked at again; an earlier moment is put off.
struct GroupLookPlanned {
  GroupOrderName order;
  std::string time;  ///< local, "YYYY-MM-DDTHH:MM:SS.mmm"
  int32_t timer = 0;
};

/// The moment came, but children live: the last of them will plan another look. Or a cycle of the order is
/// under way.
struct GroupLookPassed {
  GroupOrderName order;
  size_t live = 0;  ///< none: a cycle is
};

/// A group order won't go on, or is gone.
struct GroupOrderEnded {
  GroupOrderName order;
  GroupOrderEnd end = GroupOrderEnd::kTarget;
};

}  // namespace iorder
