#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <string>

#include "records/scaled_value.h"

namespace iorder {

/// The parameters of an OpenLottery strategy, as its commands set them. A value that is copied and replaced
/// as a whole.
///
/// Times are hhmm of the local clock, prices whole price units, percentages 20 for 20 %.
struct COpenLotteryInfo {
  std::wstring m_strSecurity;  ///< the chain: a symbol with its month or HOT
  std::wstring m_strCP;        ///< "P": puts, any other text: calls; upper case

  int64_t m_llStartTime = NoValue;
  int64_t m_llDayOfWeek = 0;  ///< bit d: runs on weekday d, 0 for Sunday; days are only ever added
  int32_t m_lStartRun = 0;    ///< 1: start at once; rewritten by the test whether that is allowed
  int32_t m_bStopEnable = 0;  ///< 1: the stop time limits a start at once
  int64_t m_llStopTime = NoValue;
  int32_t m_bStopCancel = 0;
  int32_t m_bStopClosePos = 0;
  std::wstring m_strCloseOrderType = L"MWP";
  int32_t m_lCloseTicks = 0;
  std::wstring m_strCloseOrderTypeByProfit = L"MWP";
  int32_t m_lCloseTicksByProfit = 0;

  int64_t m_llCash = NoValue;  ///< limit of one batch, in money
  double m_dbOpenPriceDn = NoPrice;
  double m_dbOpenPriceUp = NoPrice;

  int32_t m_lStrikeIn = -2;  ///< -2 in one of the two: the flags below; -1 in both: all strikes
  int32_t m_lStrikeOut = -2;
  int32_t m_lIsATM = -1;
  int32_t m_lIsITM = -1;
  int32_t m_lIsOTM = -1;
  int32_t m_lITM_D = -1;  ///< nearest and farthest distance from at-the-money, in strikes
  int32_t m_lITM_U = -1;
  int32_t m_lOTM_D = -1;
  int32_t m_lOTM_U = -1;

  double m_dbOrderPrice = NoPrice;
  int32_t m_lOrderPriceType = 0;  ///< 2: the price is calculated, any other value: m_dbOrderPrice
  std::wstring m_strPriceType;    ///< field of the underlying's price: "O", "L", "Y", "R" or "P"
  double m_dbUnderlyingChange = NoPrice;
  double m_dbUnderlyingChangePct = NoPrice;
  double m_dbVolatility = NoPrice;
  double m_dbAdjustIV = NoPrice;
  double m_dbRF = NoPrice;
  double m_dbDY = NoPrice;
  std::wstring m_strEndDate;  ///< "C": calendar days to expiry, other text: trading days
  int32_t m_lTDays = 250;
  int32_t m_lCDays = 365;
  double m_dbPriceUp = NoPrice;
  double m_dbPriceDn = NoPrice;

  /// Reads an order info. Every member of a block that is there is written, missing ones with their default;
  /// a block that is missing leaves its members alone.
  void Read(const rapidjson::Value& root);

  bool IsPut() const { return m_strCP == L"P"; }
  bool CalculatesPrice() const { return m_lOrderPriceType == 2; }
  /// The volatility is the analytics record's; -1 says so, and what -1 is left of without its fraction.
  bool TakesMarketVolatility() const { return Truncate(m_dbVolatility) == -1; }
  bool GoesByCalendarDays() const { return m_strEndDate == L"C"; }
  bool RunsOn(int64_t weekday) const { return (m_llDayOfWeek >> (weekday & 31) & 1) != 0; }
  /// The minute before the start time; NoValue without one.
  int64_t ResetTime() const;

 private:
  void ReadStart(const rapidjson::Value& start);
  void ReadStop(const rapidjson::Value& stop);
  void ReadStrikePrice(const rapidjson::Value& strikePrice);
  void ReadOrderPrice(const rapidjson::Value& orderPrice);
};

}  // namespace iorder
