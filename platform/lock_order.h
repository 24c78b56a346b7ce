#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace iorder {

/// Which lock was taken while which was held, by role (the name that locks of one kind share). A cycle means
/// that two threads can block each other, though in this run they may not have. Not locked: whoever shares it
/// between threads locks.
class CLockOrder {
 public:
  using Role = uint32_t;

  /// The number of the role of that name; the name outlives this object.
  Role RoleOf(std::string_view name);
  std::string_view NameOf(Role role) const { return m_names[role]; }

  /// True if Add has nothing to say about this pair.
  bool IsKnown(Role held, Role taken) const noexcept { return m_isKnown[held * m_stride + taken] != 0; }
  /// Notes that `thread` takes a lock of the role `taken` while it holds those of `held`. Gives one text for
  /// each pair that so first closes a cycle.
  std::vector<std::string> Add(std::span<const Role> held, Role taken, const std::wstring& thread);

 private:
  using Pair = std::pair<Role, Role>;

  std::vector<Role> PathBetween(Role from, Role to) const;
  std::string Describe(std::span<const Role> held, Role taken, const std::wstring& thread,
                       std::span<const Role> path) const;

  std::map<std::string_view, Role> m_roles;
  std::vector<std::string_view> m_names;
  std::vector<uint8_t> m_isKnown;  // of pair (held, taken): at held * m_stride + taken
  size_t m_stride = 0;
  std::map<Pair, std::string> m_firstThread;
};

}  // namespace iorder
