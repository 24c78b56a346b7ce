#include "platform/lock_order.h"

#include <algorithm>

#include "platform/text.h"

namespace iorder {
namespace {

std::string Quoted(std::string_view name) {
  std::string text = "'";
  text.append(name).append("'");
  return text;
}

}  // namespace

CLockOrder::Role CLockOrder::RoleOf(std::string_view name) {
  const auto [found, isNew] = m_roles.try_emplace(name, static_cast<Role>(m_names.size()));
  if (!isNew) return found->second;
  m_names.push_back(name);
  if (m_names.size() > m_stride) {
    m_stride = std::max<size_t>(32, m_stride * 2);
    m_isKnown.assign(m_stride * m_stride, 0);
    for (const auto& [pair, thread] : m_firstThread) m_isKnown[pair.first * m_stride + pair.second] = 1;
  }
  return found->second;
}

std::vector<std::string> CLockOrder::Add(std::span<const Role> held, Role taken, const std::wstring& thread) {
  std::vector<std::string> reports;
  for (const Role role : held) {
    if (IsKnown(role, taken)) continue;
    // The other direction is looked for before this pair is there itself.
    const std::vector<Role> path = PathBetween(taken, role);
    m_isKnown[role * m_stride + taken] = 1;
    m_firstThread.emplace(Pair(role, taken), ToUtf8(thread));
    if (!path.empty()) reports.push_back(Describe(held, taken, thread, path));
  }
  return reports;
}

/// The roles on a way from `from` to `to`, both included; empty if there is none.
std::vector<CLockOrder::Role> CLockOrder::PathBetween(Role from, Role to) const {
  std::vector<std::vector<Role>> paths{{from}};
  std::vector<bool> isSeen(m_names.size());
  for (size_t i = 0; i < paths.size(); ++i) {
    const Role last = paths[i].back();
    if (last == to) return paths[i];
    for (Role next = 0; next < m_names.size(); ++next) {
      if (isSeen[next] || !IsKnown(last, next)) continue;
      isSeen[next] = true;
      paths.push_back(paths[i]);
      paths.back().push_back(next);
    }
  }
  return {};
}

std::string CLockOrder::Describe(std::span<const Role> held, Role taken, const std::wstring& thread,
                                 std::span<const Role> path) const {
  std::string text = "lock order: thread " + Quoted(ToUtf8(thread)) + " takes " + Quoted(NameOf(taken));
  text += " while it holds ";
  for (size_t i = 0; i < held.size(); ++i) text += (i != 0 ? ", " : "") + Quoted(NameOf(held[i]));
  if (path.size() == 1) return text + ": two locks of one name";
  for (size_t i = 0; i + 1 < path.size(); ++i) {
    text += (i == 0 ? "; but " : ", ") + Quoted(NameOf(path[i + 1])) + " was taken under " +
            Quoted(NameOf(path[i]));
    text += " by thread " + Quoted(m_firstThread.at(Pair(path[i], path[i + 1])));
  }
  return text;
}

}  // namespace iorder
