#include "tools/productserver/upload_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

using tools::safeFileName;
using tools::UploadFolder;

constexpr const char* kPath = "/tmp/upload_folder/inner";

class UploadFolderTest : public testing::Test {
 protected:
  void TearDown() override { fs::remove_all("/tmp/upload_folder"); }

  static std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kPath)) names.push_back(entry.path().filename());
    return names;
  }
};

TEST_F(UploadFolderTest, NumbersFilesInOrder) {
  const auto folder = UploadFolder::open(kPath);
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->keep("x.dat", "1"), "0001_x.dat");
  EXPECT_EQ(folder->keep("x.dat", "2"), "0002_x.dat");
  EXPECT_THAT(names(), testing::UnorderedElementsAre("0001_x.dat", "0002_x.dat"));
}

TEST_F(UploadFolderTest, ContinuesAfterHighestNumber) {
  fs::create_directories(kPath);
  for (const char* const name : {"0041_x", "0007_y", "99999", "x_123", "_5"}) {
    std::ofstream(std::string(kPath) + "/" + name) << "old";
  }
  const auto folder = UploadFolder::open(kPath);
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->keep("x", "new"), "0042_x");
}

TEST_F(UploadFolderTest, NumberMayHaveFiveDigits) {
  fs::create_directories(kPath);
  std::ofstream(std::string(kPath) + "/9999_x") << "old";
  const auto folder = UploadFolder::open(kPath);
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->keep("x", "new"), "10000_x");
}

TEST_F(UploadFolderTest, InvalidFolderReturnsNull) {
  std::ofstream("/tmp/no_folder") << "a file";
  EXPECT_EQ(UploadFolder::open("/tmp/no_folder"), nullptr);
  EXPECT_EQ(UploadFolder::open("/tmp/no_folder/inner"), nullptr);
  fs::remove("/tmp/no_folder");
}

TEST_F(UploadFolderTest, FailedWriteReturnsNullopt) {
  const auto folder = UploadFolder::open(kPath);
  ASSERT_TRUE(folder);
  fs::remove_all(kPath);
  EXPECT_EQ(folder->keep("x", "d"), std::nullopt);
}

TEST(HarmlessName, IsLastComponent) {
  EXPECT_EQ(safeFileName("Tovalin.dat"), "Tovalin.dat");
  EXPECT_EQ(safeFileName("/etc/passwd"), "passwd");
  EXPECT_EQ(safeFileName("C:\\a\\b.dat"), "b.dat");
  EXPECT_EQ(safeFileName("../.."), "..");  // harmless after the number prefix
}

TEST(HarmlessName, ReplacesShellAndTerminalCharacters) {
  EXPECT_EQ(safeFileName("a b;$(c)\n\x1b[m\xc3\xa4"), "a_b___c____m__");
  EXPECT_EQ(safeFileName(std::string("a\0b", 3)), "a_b");
}

TEST(HarmlessName, IsNotEmptyAndLimitedTo100Characters) {
  EXPECT_EQ(safeFileName(""), "unnamed");
  EXPECT_EQ(safeFileName("a/"), "unnamed");
  EXPECT_EQ(safeFileName(std::string(300, 'x')), std::string(100, 'x'));
}

}  // namespace
