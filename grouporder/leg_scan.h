#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "grouporder/group_order.h"
#include "grouporder/group_order_host.h"
#include "grouporder/position_node.h"

namespace iorder {

/// One option as a leg saw it.
struct CLegCandidate {
  size_t leg = 0;
  std::wstring strSymbol;
  ScaledValue llValue = NoValue;  ///< NoValue: the record doesn't have the field
  int64_t llDistance = 0;         ///< wraps, so it may be below 0
};

/// The look at a chain: each leg gets the option whose figure lies nearest to what it wants, and each held
/// position the leg that it lies nearest to.
///
/// A record that doesn't open is passed over. A missing figure reads as NoValue and competes with its
/// wrapped distance. The first of several at one distance keeps the leg.
class CLegScan {
 public:
  using Candidates = std::vector<CLegCandidate>;

  /// `candidates` gets every option that a leg looks at; none: nobody wants to know.
  CLegScan(IGroupOrderHost& host, stcIntlgntOrd& order, Candidates* candidates)
      : m_host(host), m_order(order), m_candidates(candidates) {}

  /// Looks at the calls, then at the puts, and sets `strLegSymbol` of the legs that found something.
  void Run(CHeldPositions& positions);

  /// The positions that were assigned to a leg, in the order of the scan.
  const std::vector<stcPosition>& Held(size_t leg) const { return m_held[leg]; }

 private:
  using Positions = std::vector<stcPosition>;
  /// Takes the position in a symbol out of a list.
  using TakePosition = std::optional<stcPosition> (*)(Positions& positions, std::wstring_view symbol);

  /// A leg that looks at the options of one right, and the first of these legs that reads the same field.
  struct Look {
    size_t leg = 0;
    size_t sameFieldAs = 0;
  };

  std::vector<Look> LooksAt(const wchar_t* callPut) const;
  void Scan(const wchar_t* callPut, const std::vector<std::wstring>& names, Positions& positions,
            TakePosition take);
  /// Lets the legs look at one option; gives the one that a position in it belongs to.
  std::optional<size_t> Judge(CBaseData& record, const std::vector<Look>& looks, std::wstring_view symbol,
                              bool isHeld);

  IGroupOrderHost& m_host;
  stcIntlgntOrd& m_order;
  Candidates* m_candidates;
  PerLeg<int64_t> m_bestDistance{};
  PerLeg<Positions> m_held;
};

}  // namespace iorder
