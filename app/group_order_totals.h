#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "app/happening.h"
#include "app/object_writer.h"

namespace iorder {

/// Where the group orders of a day stand, gathered from its happenings.
class CGroupOrderTotals {
 public:
  struct Row {
    int64_t cycles = 0;
    int64_t orders = 0;
    int64_t lots = 0;
    int64_t children = 0;
    size_t live = 0;  ///< children that have not ended
    bool isFailed = false;
    std::string nextLook;  ///< local date and time; empty: none is planned
    std::optional<GroupOrderEnd> end;

    /// A word for programs, and where it stands in words.
    std::string State() const;
    std::string Words() const;
  };
  using Key = std::pair<std::string, int64_t>;  ///< id, number

  void Add(const Happening& happening);

  const std::map<Key, Row>& Rows() const { return m_rows; }

  /// The closing table; "" if there was no group order.
  std::string Table() const;
  /// The member "group_orders" of the closing object.
  void WriteJson(CObjectWriter& writer) const;

 private:
  Row& RowOf(const GroupOrderName& order) { return m_rows[{order.id, order.number}]; }
  bool IsIdShared(const std::string& id) const;

  void Take(const GroupOrderLooked& look);
  void Take(const GroupCycleMade& cycle);
  void Take(const OrderSent& order);
  void Take(const GroupChildAnnounced& child);
  void Take(const GroupChildChanged& child);
  void Take(const GroupLookPlanned& look);
  void Take(const GroupLookPassed& look);
  void Take(const GroupOrderEnded& ended);
  template <typename Other>
  void Take(const Other&) {}

  std::map<Key, Row> m_rows;
};

}  // namespace iorder
