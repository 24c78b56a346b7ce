#pragma once

#include "app/happening.h"
#include "app/object_writer.h"

namespace iorder {

/// The members "group_order" and "number".
void WriteName(CObjectWriter& members, const GroupOrderName& order);

/// What an order that is part of a group order has more than others.
void WriteString(CObjectWriter& members, const GroupString& string);

// "kind", and what the happening holds. Figures of options are numbers as conditions of legs spell them.
void Write(CObjectWriter& members, const GroupOrderLooked& look);
void Write(CObjectWriter& members, const GroupCycleMade& cycle);
void Write(CObjectWriter& members, const GroupLegChosen& leg);
void Write(CObjectWriter& members, const GroupChildAnnounced& child);
void Write(CObjectWriter& members, const GroupChildChanged& child);
void Write(CObjectWriter& members, const GroupLookPlanned& look);
void Write(CObjectWriter& members, const GroupLookPassed& look);
void Write(CObjectWriter& members, const GroupOrderEnded& ended);

}  // namespace iorder
