#include "app/day_writer.h"

#include <map>

#include "app/object_writer.h"
#include "app/time_text.h"

namespace iorder {
namespace {

void WriteTexts(CObjectWriter& line, std::string_view name, const CDayWriter::Fields& fields) {
  line.Begin(name);
  for (const auto& [field, value] : fields) line.Text(field, value);
  line.End();
}

/// The exchange's part of a product name: "ND.O.TWF" of "ND.O.TWF.TX".
std::string ExchangeOf(const std::string& product) {
  return product.substr(0, product.rfind('.'));
}

}  // namespace

template <typename Fill>
void CDayWriter::Line(Fill&& fill) {
  CObjectWriter line;
  fill(line);
  m_file.Write(line.Close() + '\n');
}

CDayWriter::CDayWriter(const std::filesystem::path& path, LocalTime start, LocalTime end,
                       std::string_view fill)
    : m_file(path) {
  Line([&](CObjectWriter& line) {
    line.Begin("day");
    line.Text("start", TimeText(start));
    line.Text("end", TimeText(end));
    line.Text("timezone", "Asia/Taipei");
    if (!fill.empty()) {
      line.Begin("orders");
      line.Text("fill", fill);
      line.End();
    }
    line.End();
  });
}

void CDayWriter::Note(std::string_view text) {
  Line([&](CObjectWriter& line) { line.Text("note", text); });
}

void CDayWriter::Settings(std::string_view path, std::string_view text) {
  Line([&](CObjectWriter& line) {
    line.Text("settings", path);
    line.Text("text", text);
  });
}

void CDayWriter::Symbol(const ListedSymbol& row) {
  Line([&](CObjectWriter& line) {
    line.BeginList("symbols");
    line.Begin();
    line.Text("Symbol", row.symbol);
    line.Text("Type", row.type);
    line.Text("SearchName", row.searchName);
    line.Text("ExpDate", row.expiryDate);
    line.Text("product", row.product);
    line.Text("setpriadj", "");
    line.End();
    line.EndList();
  });
}

void CDayWriter::Record(std::string_view name, const Fields& fields) {
  Line([&](CObjectWriter& line) {
    line.Text("record", name);
    WriteTexts(line, "fields", fields);
  });
}

void CDayWriter::SecurityInfo(const Fields& attributesOfProducts) {
  std::map<std::string, Fields> exchanges;
  for (const auto& field : attributesOfProducts) exchanges[ExchangeOf(field.first)].push_back(field);
  Line([&](CObjectWriter& line) {
    line.Text("record", "Security.Info");
    line.BeginList("items");
    for (const auto& [exchange, fields] : exchanges) {
      line.Begin();
      line.Text("name", exchange);
      WriteTexts(line, "fields", fields);
      line.End();
    }
    line.EndList();
  });
}

void CDayWriter::Account(std::string_view broker, std::string_view account) {
  Line([&](CObjectWriter& line) {
    line.BeginList("accounts");
    line.Begin();
    line.Text("BrokerID", broker);
    line.Text("Account", account);
    line.Number("ConnectStatus", 2);
    line.End();
    line.EndList();
  });
}

void CDayWriter::Series(const ListedSeries& series) {
  Line([&](CObjectWriter& line) {
    line.Text("quote", series.symbol);
    // Listed isn't traded: the time fields stay empty until the first trade.
    line.Flag("clock", false);
    line.Number("mcode", 1);
    if (series.endDate != 0) line.Number("end_date", series.endDate);
    if (!series.referencePrice.empty()) {
      for (const char* type : {"R", "P", "Y"}) line.Text(type, series.referencePrice);
    }
  });
}

void CDayWriter::Ticks(std::string_view path) {
  Line([&](CObjectWriter& line) { line.Text("ticks", path); });
}

void CDayWriter::Commit() {
  m_file.Commit();
}

}  // namespace iorder
