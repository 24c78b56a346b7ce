#include "tests/checkers/group_chase.h"

#include <fmt/format.h>

#include <algorithm>

#include "terminal/json_line.h"

namespace iorder::testing {
namespace {

constexpr size_t kMostTokens = 5;
constexpr size_t kFewestTokens = 2;

std::vector<std::string> TokensOf(std::string_view symbol) {
  std::vector<std::string> tokens;
  while (!symbol.empty()) {
    const std::string_view token = symbol.substr(0, symbol.find('.'));
    if (!token.empty()) tokens.emplace_back(token);
    symbol.remove_prefix(std::min(token.size() + 1, symbol.size()));
  }
  return tokens;
}

/// The items that may hold the settings of a symbol, the narrowest first.
std::vector<std::string> NamesFor(const std::string& symbol) {
  const std::vector<std::string> tokens = TokensOf(symbol);
  std::vector<std::string> names;
  std::string name;
  for (size_t i = 0; i < std::min(kMostTokens, tokens.size()); ++i) {
    name += (i == 0 ? "" : ".") + tokens[i];
    if (i + 1 >= kFewestTokens) names.push_back(name);
  }
  names.push_back(symbol);
  std::reverse(names.begin(), names.end());
  const std::string type = tokens.size() >= kFewestTokens ? tokens[1] : "";
  names.push_back(type == "O" ? "OPTION" : type == "S" ? "STOCK" : "FUTURE");
  names.push_back("ALL");
  return names;
}

/// The last of the members of that name: a text's number, 0 for anything else.
int32_t SettingOf(const JsonNode& settings, std::string_view name, int32_t missing) {
  for (auto member = settings.children.rbegin(); member != settings.children.rend(); ++member) {
    if (member->name == name)
      return member->kind == JsonNode::Kind::kText
                 ? static_cast<int32_t>(std::clamp<int64_t>(LeadingWhole(member->text), INT32_MIN, INT32_MAX))
                 : 0;
  }
  return missing;
}

}  // namespace

std::optional<std::string> WorkOutChase(const GroupCommand& command, const std::string& symbol,
                                        const GroupLook& look, std::vector<std::string>& mistakes) {
  if (look.settingNames.empty()) return "";  // the record itself isn't there
  std::vector<std::string> names = NamesFor(symbol);
  const auto hit = std::find_if(look.settingNames.begin(), look.settingNames.end(),
                                [](const auto& name) { return name.second; });
  if (hit != look.settingNames.end()) {
    names.resize(std::min<size_t>(names.size(), static_cast<size_t>(hit - look.settingNames.begin()) + 1));
  }
  const bool isAsked =
      std::equal(names.begin(), names.end(), look.settingNames.begin(), look.settingNames.end(),
                 [](const std::string& name, const auto& asked) { return name == asked.first; });
  if (!isAsked) mistakes.push_back("doesn't ask for the settings of " + symbol);
  if (hit == look.settingNames.end()) return "";

  const auto textOf = [&look](const std::string& name) {
    const auto found = look.settings.find(name);
    return found != look.settings.end() ? TextOf(found->second) : std::string();
  };
  std::string text = textOf("1-" + command.broker + "-" + command.account);
  if (text.empty()) text = textOf("1-ALL");
  if (text.empty()) return "";
  try {
    const JsonNode settings = ParseJson(text, {});
    if (!settings.IsObject() || SettingOf(settings, "On", 0) != 1) return "";
    return fmt::format("0|{}|{}|C|2", SettingOf(settings, "Times", 1), SettingOf(settings, "TimeOut", 100));
  } catch (const InputError&) {
    return std::nullopt;
  }
}

}  // namespace iorder::testing
