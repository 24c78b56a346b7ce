#include "platform/scratch_path.h"

#include <gtest/gtest.h>

#include <fstream>

namespace iorder {
namespace {

namespace fs = std::filesystem;

TEST(ScratchPath, AFolderGoesWithAllThatIsInIt) {
  fs::path path;
  {
    const CScratchPath folder = CScratchPath::NewFolder();
    path = folder.Path();
    fs::create_directories(path / "inner");
    std::ofstream(path / "inner" / "file") << "text";
    EXPECT_TRUE(fs::exists(path / "inner" / "file"));
  }
  EXPECT_FALSE(fs::exists(path));
}

TEST(ScratchPath, AFileKeepsTheEndingsOfItsTarget) {
  const CScratchPath folder = CScratchPath::NewFolder();
  const CScratchPath file = CScratchPath::NewFileBeside(folder.Path() / "x.trace.jsonl.gz");
  EXPECT_EQ(file.Path().parent_path(), folder.Path());
  EXPECT_TRUE(file.Path().string().ends_with(".trace.jsonl.gz"));
  EXPECT_TRUE(fs::exists(file.Path()));
}

TEST(ScratchPath, FilesOfOneTargetDiffer) {
  const CScratchPath folder = CScratchPath::NewFolder();
  const CScratchPath first = CScratchPath::NewFileBeside(folder.Path() / "x.csv");
  const CScratchPath second = CScratchPath::NewFileBeside(folder.Path() / "x.csv");
  EXPECT_NE(first.Path(), second.Path());
}

TEST(ScratchPath, WhatWasMovedStays) {
  const CScratchPath folder = CScratchPath::NewFolder();
  const fs::path target = folder.Path() / "x.csv";
  std::ofstream(target) << "earlier";
  {
    CScratchPath file = CScratchPath::NewFileBeside(target);
    std::ofstream(file.Path()) << "new";
    file.MoveTo(target);
  }
  std::string text;
  std::ifstream(target) >> text;
  EXPECT_EQ(text, "new");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
}

TEST(ScratchPath, AFolderThatIsNotThereIsAnError) {
  EXPECT_THROW(CScratchPath::NewFileBeside("/nowhere/at/all/x.csv"), fs::filesystem_error);
}

}  // namespace
}  // namespace iorder
