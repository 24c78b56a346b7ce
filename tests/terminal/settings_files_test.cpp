#include "terminal/settings_files.h"

#include <gmock/gmock.h>

#include "platform/virtual/virtual_runtime.h"
#include "tests/terminal/day_folder.h"

namespace iorder::testing {
namespace {

class SettingsFiles : public ::testing::Test {
 protected:
  SettingsFiles() : m_runtime(VirtualRuntimeOptions()), m_files(m_runtime, "", L"C:\\T\\") {}

  std::wstring Read(const std::wstring& key, size_t limit = 256,
                    const std::wstring& path = L"C:\\T\\ComShared\\a.ini") {
    return m_files.ReadString(path, L"Section", key, L"fallback", limit);
  }

  CVirtualRuntime m_runtime;
  CSettingsFiles m_files;
};

TEST_F(SettingsFiles, AMissingFileSectionOrKeyGivesTheFallback) {
  EXPECT_EQ(L"fallback", Read(L"Key"));
  m_files.Write("ComShared/a.ini", "[Other]\nKey = 1\n");
  EXPECT_EQ(L"fallback", Read(L"Key"));
  EXPECT_EQ(L"fallback", Read(L"Key", 256, L"D:\\Elsewhere\\a.ini"));
}

TEST_F(SettingsFiles, ValuesAreReadBySectionAndKey) {
  m_files.Write("ComShared\\a.ini",
                "; a comment\n[section]\nND.O.TWF.TX = ND.F.TWF.TX\nempty =\nquoted = \" x \"\nfirst = "
                "1\nfirst = 2\nä = é\n");
  EXPECT_EQ(L"ND.F.TWF.TX", Read(L"ND.O.TWF.TX"));
  EXPECT_EQ(L"", Read(L"empty"));
  EXPECT_EQ(L" x ", Read(L"quoted"));
  EXPECT_EQ(L"1", Read(L"first"));
  EXPECT_EQ(L"é", Read(L"ä"));
}

TEST_F(SettingsFiles, AValueIsCutToTheLimit) {
  m_files.Write("ComShared/a.ini", "[Section]\nKey=abcdef\n");
  EXPECT_EQ(L"abc", Read(L"Key", 4));
  EXPECT_EQ(L"fal", Read(L"None", 4));
}

TEST_F(SettingsFiles, AFileThatIsWrittenAgainIsReadAnew) {
  m_files.Write("ComShared/a.ini", "[Section]\nKey=1\n");
  EXPECT_EQ(L"1", Read(L"Key"));
  m_files.Write("ComShared/a.ini", "[Section]\nKey=2\n");
  EXPECT_EQ(L"2", Read(L"Key"));
}

TEST_F(SettingsFiles, AFolderThatTheDayNamesStays) {
  CDayFolder folder;
  {
    CSettingsFiles files(m_runtime, folder.Path("settings"), L"C:\\T\\");
    files.Write("a.ini", "[Section]\nKey=1\n");
  }
  EXPECT_TRUE(std::filesystem::exists(folder.Path("settings/a.ini")));
}

}  // namespace
}  // namespace iorder::testing
