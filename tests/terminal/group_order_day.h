#pragma once

#include <string>
#include <vector>

#include "tests/terminal/terminal_fixture.h"

namespace iorder::testing {

inline constexpr const char* kCall = "ND.O.TWF.TX.202403.C.18000";
inline constexpr const char* kPut = "ND.O.TWF.TX.202403.P.18000";

/// The string of a group order; `rest` are further pairs, and win over those that stand here.
std::string GroupOrder(const std::string& symbol, const std::string& side, int lots,
                       const std::string& rest = "");
/// A line of the day at which the engine sends the strings, one behind the other.
std::string SendAt(const std::string& at, const std::vector<std::string>& strings);

/// A day whose engine sends group orders, and follows each child that it is told of.
class CGroupOrderDay {
 public:
  /// `orders`: the object in the head; `head`: further members of it, with a comma before them.
  explicit CGroupOrderDay(const std::string& lines, const std::string& orders = "{}",
                          const std::string& head = "");

  /// A field of the order's child as it is at the end.
  Value Child(int32_t order, const wchar_t* name);
  /// A field of the strategy's item of that symbol; none without it.
  Value Position(const wchar_t* strategy, const std::string& symbol, const wchar_t* name);

  CPlayedDay day;
  std::vector<std::string> seen;  ///< "TIME KEY announced" and "TIME KEY EXECTYPE FILLED"

 private:
  void OnChild(int32_t handle);
  std::string Text(IBusObject& record, const wchar_t* name);

  std::map<std::string, std::shared_ptr<IBusObject>> m_children;  ///< by "LevelKey"
};

}  // namespace iorder::testing
