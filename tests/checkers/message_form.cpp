#include "tests/checkers/message_form.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace iorder::testing {
namespace {

/// The keys of a body, one letter and a name each. Letters: s text, i integer, d double, 6 or 2 places by the
/// kind. Behind "?" a key may be missing.
using Form = std::vector<std::string_view>;

const Form kEnvelope{"s StrategyType", "s StrategyTag", "s StrategyID", "s StrategySN", "s MsgType"};
const Form kTotalEnvelope{"s StrategyType", "s StrategyTag", "s MsgType"};

const std::vector<Form> kOrderForms{
    {"s Stamp", "s Symbol", "i Result", "i Action"},
    {"s Stamp", "s Symbol", "i Date", "i Time", "d OrderPrice", "i Qty", "i Result", "i Action"},
    {"s Stamp", "s Symbol", "i Date", "i Time", "s OrderPrice", "i Qty", "i Result", "i Action"},
    {"s Stamp", "s Symbol", "i Date", "i Time", "i Result", "i Action"},
};
const std::vector<Form> kReportForms{
    {"s Stamp", "s Symbol", "i Date", "i Time", "d OrderPrice", "i Qty"},
    {"s Stamp", "s Symbol", "i UpdateDate", "i UpdateTime", "d OrderPrice", "i Qty", "?i CumQty",
     "?d AvgPrice", "i LeavesQty", "i ExecType", "?i Position"},
    {"s Stamp", "s Symbol", "i UpdateDate", "i UpdateTime", "s OrderPrice", "i Qty", "?i CumQty",
     "?d AvgPrice", "i LeavesQty", "i ExecType", "?i Position"},
    {"s Stamp", "s Symbol", "i UpdateDate", "i UpdateTime", "?d CloseAvgPrice", "?i CloseQty", "?i Position"},
    {"s Stamp", "s Symbol", "i UpdateDate", "i UpdateTime", "i LeavesQty", "?i Position"},
};
const Form kCalculated{"s Stamp",
                       "s Symbol",
                       "s UnderlyingSymbol",
                       "d TheoryPrice",
                       "s PriceType",
                       "d UnderlyingPrice",
                       "?d UnderlyingChange",
                       "?d UnderlyingChange%",
                       "d Volatility",
                       "d RF",
                       "d DY",
                       "s EndDateType",
                       "i EndDate",
                       "i Days",
                       "d PriceUp",
                       "d PriceDn"};
const std::vector<Form> kScannerForms{
    {"s Stamp", "s Symbol", "i Date", "i Time", "d OpenPrice", "i OpenPriceOK"},
    kCalculated,
};
const std::vector<Form> kProfitForms{{"s Stamp", "s Symbol", "d Last", "d PnL"}};
const std::vector<Form> kTotalForms{{"i Cost", "d PnL"}};

const std::vector<Form>* FormsOf(std::string_view kind) {
  if (kind == "Order") return &kOrderForms;
  if (kind == "Report") return &kReportForms;
  if (kind == "Scanner") return &kScannerForms;
  if (kind == "Profit") return &kProfitForms;
  if (kind == "TotalProfit") return &kTotalForms;
  return nullptr;
}

size_t PlacesOf(std::string_view number) {
  const size_t point = number.find('.');
  const size_t end = std::min(number.find_first_of("eE"), number.size());
  return point == std::string_view::npos || point > end ? 0 : end - point - 1;
}

bool IsDouble(const JsonNode& node, size_t places) {
  if (node.kind == JsonNode::Kind::kNull) return true;  // a number that isn't finite
  if (node.kind != JsonNode::Kind::kNumber) return false;
  // Cut off behind the places; where the number is shorter, its shortest spelling.
  return node.text.find_first_of(".eE") != std::string::npos && PlacesOf(node.text) <= places;
}

bool IsInteger(const JsonNode& node) {
  return node.kind == JsonNode::Kind::kNumber && node.text.find_first_of(".eE") == std::string::npos;
}

bool HasType(const JsonNode& node, char type, size_t places) {
  if (type == 's') return node.kind == JsonNode::Kind::kText;
  return type == 'i' ? IsInteger(node) : IsDouble(node, places);
}

/// The name at which the members first differ from the form; empty if they don't.
std::string DifferenceFrom(const Form& form, const std::vector<JsonNode>& members, size_t places) {
  auto member = members.begin();
  for (std::string_view key : form) {
    const bool mayMiss = key.front() == '?';
    key.remove_prefix(mayMiss ? 1 : 0);
    const std::string_view name = key.substr(2);
    if (member == members.end() || member->name != name) {
      if (mayMiss) continue;
      return std::string(name);
    }
    if (!HasType(*member, key.front(), places)) return std::string(name);
    ++member;
  }
  return member == members.end() ? std::string() : member->name;
}

bool HasExactlyOneChange(const JsonNode& body) {
  return (body.Find("UnderlyingChange") != nullptr) != (body.Find("UnderlyingChange%") != nullptr);
}

}  // namespace

std::optional<std::string> ComplaintAboutMessage(const JsonNode& message) {
  if (!message.IsObject()) return "isn't an object";
  const JsonNode* const kindNode = message.Find("MsgType");
  const std::string kind = kindNode != nullptr ? kindNode->text : "";
  std::vector<JsonNode> envelope = message.children;
  const bool hasBody = !envelope.empty() && envelope.back().name == "Data";
  if (hasBody) envelope.pop_back();
  const bool isTotal = kind == "TotalProfit";
  if (const std::string at = DifferenceFrom(isTotal ? kTotalEnvelope : kEnvelope, envelope, 0); !at.empty())
    return "its envelope differs at '" + at + "'";
  if (kind == "ClearReport") return hasBody ? std::optional("has a body") : std::nullopt;

  const std::vector<Form>* const forms = FormsOf(kind);
  if (forms == nullptr) return "is of the unknown kind '" + kind + "'";
  if (!hasBody || !message.children.back().IsObject()) return "has no body";
  const JsonNode& body = message.children.back();
  const size_t places = isTotal || kind == "Profit" ? 2 : 6;
  std::string differences;
  for (const Form& form : *forms) {
    const std::string at = DifferenceFrom(form, body.children, places);
    const bool fits = at.empty() && (&form != &kScannerForms.back() || HasExactlyOneChange(body));
    if (fits) return std::nullopt;
    differences += " '" + at + "'";
  }
  return "is none of the forms of " + kind + ": they differ at" + differences;
}

}  // namespace iorder::testing
