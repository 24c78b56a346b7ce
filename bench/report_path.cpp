#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "bench/counting_host.h"
#include "bench/paths.h"

namespace iorder {

namespace {

constexpr int kReports = 2000;
constexpr size_t kLineSize = 120;
constexpr const wchar_t* kSymbol = L"ND.O.TWF.TX.202403.C.18000";

/// Writes lines of 120 bytes into a file of the folder, one call each.
class CLineFile {
 public:
  explicit CLineFile(const std::string& path)
      : m_file(open(path.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0600)) {
    if (m_file < 0) throw std::runtime_error("no file for lines");
  }
  ~CLineFile() { close(m_file); }
  CLineFile(const CLineFile&) = delete;
  CLineFile& operator=(const CLineFile&) = delete;

  void Write() {
    static const std::string kLine(kLineSize, 'x');
    for (int i = 0; i < kReports; ++i) {
      if (write(m_file, kLine.data(), kLine.size()) < 0) throw std::runtime_error("can't write");
    }
  }

 private:
  int m_file;
};

}  // namespace

Ratio ReportAgainstWrite(const CBenchFolder& folder, int repeats) {
  CCountingHost host;
  Ratio ratio;
  host.Run([&] {
    CLineFile lines(folder.PathOf("lines"));
    const auto strategy = MakeBenchStrategy(host, "R", "R");
    const auto report = MakeBenchReport(host, L"Report", strategy->Key(), kSymbol, 3);
    ratio = Compare("one order report", "write(2) of 120 bytes", Timed(kReports, [&] { lines.Write(); }),
                    Timed(kReports,
                          [&] {
                            for (int i = 0; i < kReports; ++i) strategy->OnReportUpdate(report.get());
                          }),
                    1.0, repeats);
  });
  Keep(host.Characters());
  return ratio;
}

}  // namespace iorder
