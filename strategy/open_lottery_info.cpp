#include "strategy/open_lottery_info.h"

#include "records/json_document.h"
#include "records/json_reader.h"

namespace iorder {

namespace {

constexpr int kMinutesOfDay = 24 * 60;

std::wstring UpperCase(std::wstring text) {
  for (wchar_t& c : text) {
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
  }
  return text;
}

/// A number cut to its low 32 bits.
int32_t CutTo32(double number) {
  return static_cast<int32_t>(static_cast<uint32_t>(Truncate(number)));
}

}  // namespace

void COpenLotteryInfo::Read(const rapidjson::Value& root) {
  if (const auto* symbol = FindObject(root, "Symbol")) {
    m_strSecurity = ReadJsonString(*symbol, "Security");
    m_strCP = UpperCase(ReadJsonString(*symbol, "CP"));
  }
  if (const auto* start = FindObject(root, "Start")) ReadStart(*start);
  if (const auto* stop = FindObject(root, "Stop")) ReadStop(*stop);
  if (const auto* close = FindObject(root, "CloasPosInfoByProfit")) {
    m_strCloseOrderTypeByProfit = ReadJsonString(*close, "OrderType");
    m_lCloseTicksByProfit = ReadJsonInt(*close, "LimitTicks", 0);
  }
  m_llCash = Truncate(ReadJsonNumberLoose(root, "Cash", NoPrice));
  if (const auto* condition = FindObject(root, "Condition")) {
    if (const auto* openPrice = FindObject(*condition, "OpenPrice")) {
      m_dbOpenPriceDn = ReadJsonNumber(*openPrice, "Dn", 0.0);
      m_dbOpenPriceUp = ReadJsonNumber(*openPrice, "Up", 0.0);
    }
    if (const auto* strikePrice = FindObject(*condition, "StrikePrice")) ReadStrikePrice(*strikePrice);
  }
  if (const auto* orderPrice = FindObject(root, "OrderPrice")) ReadOrderPrice(*orderPrice);
}

void COpenLotteryInfo::ReadStart(const rapidjson::Value& start) {
  m_llStartTime = ReadJsonInt64(start, "Time", NoValue);
  m_lStartRun = ReadJsonInt(start, "Run", NoInt);
  const rapidjson::Value* days = FindMember(start, "DayOfWeek");
  if (days == nullptr || !days->IsArray()) return;
  for (const rapidjson::Value& day : days->GetArray()) {
    if (day.IsInt()) m_llDayOfWeek |= int64_t{1} << (day.GetInt() & 31);
  }
}

void COpenLotteryInfo::ReadStop(const rapidjson::Value& stop) {
  m_bStopEnable = ReadJsonInt(stop, "Enable", 0);
  m_llStopTime = ReadJsonInt64(stop, "Time", NoValue);
  m_bStopCancel = ReadJsonInt(stop, "Cancel", 0);
  m_bStopClosePos = ReadJsonInt(stop, "ClosePos", 0);
  // Looked up without a test of its kind: what is no object counts as one without members.
  if (const auto* close = FindMember(stop, "CloasPosInfo")) {
    m_strCloseOrderType = ReadJsonString(*close, "OrderType");
    m_lCloseTicks = ReadJsonInt(*close, "LimitTicks", 0);
  }
}

void COpenLotteryInfo::ReadStrikePrice(const rapidjson::Value& strikePrice) {
  m_lStrikeIn = CutTo32(ReadJsonNumber(strikePrice, "In", -2));
  m_lStrikeOut = CutTo32(ReadJsonNumber(strikePrice, "Out", -2));
  m_lIsATM = ReadJsonInt(strikePrice, "IsATM", 0);
  m_lIsITM = ReadJsonInt(strikePrice, "IsITM", 0);
  m_lIsOTM = ReadJsonInt(strikePrice, "IsOTM", 0);
  m_lITM_D = ReadJsonInt(strikePrice, "ITM_D", 0);
  m_lITM_U = ReadJsonInt(strikePrice, "ITM_U", 0);
  m_lOTM_D = ReadJsonInt(strikePrice, "OTM_D", 0);
  m_lOTM_U = ReadJsonInt(strikePrice, "OTM_U", 0);
}

void COpenLotteryInfo::ReadOrderPrice(const rapidjson::Value& orderPrice) {
  m_lOrderPriceType = ReadJsonInt(orderPrice, "Type", 0);
  m_dbOrderPrice = ReadJsonNumber(orderPrice, "Price", NoPrice);
  m_strPriceType = ReadJsonString(orderPrice, "PriceType");
  m_dbUnderlyingChange = ReadJsonNumber(orderPrice, "UnderlyingChange", NoPrice);
  m_dbUnderlyingChangePct = ReadJsonNumber(orderPrice, "UnderlyingChange%", NoPrice);
  m_dbVolatility = ReadJsonNumber(orderPrice, "Volatility", 0.0);
  m_dbAdjustIV = ReadJsonNumber(orderPrice, "AdjustIV", 0.0);
  m_dbRF = ReadJsonNumber(orderPrice, "RF", 0.0);
  m_dbDY = ReadJsonNumber(orderPrice, "DY", 0.0);
  m_strEndDate = ReadJsonString(orderPrice, "EndDate");
  m_lTDays = CutTo32(ReadJsonNumber(orderPrice, "TDays", 250));
  m_lCDays = CutTo32(ReadJsonNumber(orderPrice, "CDays", 365));
  m_dbPriceUp = ReadJsonNumber(orderPrice, "PriceUp", NoPrice);
  m_dbPriceDn = ReadJsonNumber(orderPrice, "PriceDn", NoPrice);
}

int64_t COpenLotteryInfo::ResetTime() const {
  if (m_llStartTime == NoValue) return NoValue;
  const int64_t minute = m_llStartTime / 100 * 60 + m_llStartTime % 100;
  const int64_t before = (minute + kMinutesOfDay - 1) % kMinutesOfDay;
  return before / 60 * 100 + before % 60;
}

}  // namespace iorder
