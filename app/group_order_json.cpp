#include "app/group_order_json.h"

#include "app/group_order_words.h"
#include "app/happening_text.h"

namespace iorder {
namespace {

/// Null for a figure that isn't there.
void WriteFigure(CObjectWriter& members, std::string_view name, const std::string& field,
                 ScaledValue figure) {
  if (figure == NoValue) {
    members.Null(name);
  } else {
    members.Digits(name, FigureText(field, figure));
  }
}

void WriteCandidate(CObjectWriter& members, const GroupCandidate& candidate, const std::string& field) {
  WriteFigure(members, "figure", field, candidate.figure);
  WriteFigure(members, "distance", field, candidate.HasDistance() ? candidate.distance : NoValue);
}

void WriteLots(CObjectWriter& members, std::string_view name, const std::vector<GroupLots>& lots) {
  members.BeginList(name);
  for (const GroupLots& one : lots) {
    members.Begin();
    members.Text("symbol", one.symbol);
    members.Number("lots", one.lots);
    if (!one.side.empty()) members.Text("side", SideWords(one.side));
    members.End();
  }
  members.EndList();
}

void WriteNext(CObjectWriter& members, const GroupLegChosen& leg) {
  members.BeginList("next");
  for (const GroupCandidate& candidate : leg.next) {
    members.Begin();
    members.Text("symbol", candidate.symbol);
    WriteCandidate(members, candidate, leg.field);
    members.End();
  }
  members.EndList();
}

void WriteChecks(CObjectWriter& members, const std::vector<GroupCheck>& checks) {
  members.BeginList("checks");
  for (const GroupCheck& check : checks) {
    members.Begin();
    members.Number("check", check.number);
    members.Text("field", check.field);
    members.Double("value", check.value);
    members.Double("low", check.low);
    members.Double("high", check.high);
    members.Flag("outside", check.isOut);
    members.End();
  }
  members.EndList();
}

void WriteLegNumber(CObjectWriter& members, std::string_view name, size_t leg) {
  if (leg != 0) {
    members.Number(name, static_cast<int64_t>(leg));
  } else {
    members.Null(name);
  }
}

}  // namespace

void WriteName(CObjectWriter& members, const GroupOrderName& order) {
  members.Text("group_order", order.id);
  members.Number("number", order.number);
}

void WriteString(CObjectWriter& members, const GroupString& string) {
  WriteName(members, string.order);
  WriteLegNumber(members, "leg", string.leg);
  members.Flag("offsets", string.offsets);
  members.Text("group", string.group);
  members.Text("group_id", string.groupId);
  members.Text("chase", string.chase);
}

void Write(CObjectWriter& members, const GroupOrderLooked& look) {
  members.Text("kind", "look");
  WriteName(members, look.order);
  members.Text("field", look.field);
  members.Double("factor", look.factor);
  members.Double("sum", look.sum);
  members.Double("target", look.target);
  if (look.mustRise) {
    members.Text("must", *look.mustRise ? "rise" : "fall");
  } else {
    members.Null("must");
  }
  members.Flag("done", look.isDone);
}

void Write(CObjectWriter& members, const GroupCycleMade& cycle) {
  members.Text("kind", "cycle");
  WriteName(members, cycle.order);
  members.Number("cycle", cycle.cycle);
  members.Double("sum", cycle.sum);
  members.Double("target", cycle.target);
  WriteChecks(members, cycle.checks);
  WriteLegNumber(members, "doubled", cycle.doubledLeg);
  members.Number("orders", static_cast<int64_t>(cycle.orders));
  members.Number("lots", cycle.lots);
}

void Write(CObjectWriter& members, const GroupLegChosen& leg) {
  members.Text("kind", "leg");
  WriteName(members, leg.order);
  members.Number("cycle", leg.cycle);
  members.Number("leg", static_cast<int64_t>(leg.leg));
  members.Text("right", leg.right);
  members.Text("side", SideWords(leg.side));
  members.Number("lots", leg.lots);
  members.Flag("doubled", leg.isDoubled);
  members.Text("field", leg.field);
  WriteFigure(members, "wanted", leg.field, leg.wanted);
  members.Text("symbol", leg.symbol);
  members.Flag("found", leg.found.has_value());
  WriteCandidate(members, leg.found.value_or(GroupCandidate{}), leg.field);
  WriteNext(members, leg);
  members.Number("candidates", static_cast<int64_t>(leg.candidates));
  members.Number("without_figure", static_cast<int64_t>(leg.withoutFigure));
  WriteLots(members, "held", leg.held);
  WriteLots(members, "offsets", leg.offsets);
  members.Number("opens", leg.opens);
}

void Write(CObjectWriter& members, const GroupChildAnnounced& child) {
  members.Text("kind", "child");
  WriteName(members, child.order);
  members.Text("child", child.child);
  members.Null("state");
  members.Text("words", "is there");
  members.Number("live", static_cast<int64_t>(child.live));
  members.Flag("fails", false);
}

void Write(CObjectWriter& members, const GroupChildChanged& child) {
  members.Text("kind", "child");
  WriteName(members, child.order);
  members.Text("child", child.child);
  if (child.state != NoInt) {
    members.Number("state", child.state);
  } else {
    members.Null("state");
  }
  members.Text("words", ChildStateWords(child.state));
  members.Number("live", static_cast<int64_t>(child.live));
  members.Flag("fails", child.fails);
}

void Write(CObjectWriter& members, const GroupLookPlanned& look) {
  members.Text("kind", "next_look");
  WriteName(members, look.order);
  members.Text("time", look.time);
  members.Number("timer", look.timer);
}

void Write(CObjectWriter& members, const GroupLookPassed& look) {
  members.Text("kind", "no_look");
  WriteName(members, look.order);
  members.Number("live", static_cast<int64_t>(look.live));
}

void Write(CObjectWriter& members, const GroupOrderEnded& ended) {
  members.Text("kind", "group_end");
  WriteName(members, ended.order);
  members.Text("words", EndWords(ended.end));
}

}  // namespace iorder
