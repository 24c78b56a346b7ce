#pragma once

#include <functional>
#include <mutex>
#include <string_view>

namespace iorder {

/// One line at the end of the terminal that the error stream goes to, written anew again and again; nothing
/// where it goes elsewhere. Any thread may call.
class CStatusLine {
 public:
  CStatusLine();
  /// Takes the line away.
  ~CStatusLine();
  CStatusLine(const CStatusLine&) = delete;
  CStatusLine& operator=(const CStatusLine&) = delete;

  /// Whether somebody can see it.
  bool IsWatched() const { return m_watched; }
  void Show(std::string_view text);
  void Clear();
  /// Lets `print` write and flush its text where the line stood; the line comes back with the next Show.
  void Above(const std::function<void()>& print);

 private:
  void ClearLocked();

  const bool m_watched;
  std::mutex m_mutex;
  bool m_shown = false;
};

}  // namespace iorder
