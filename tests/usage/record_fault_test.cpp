#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

#include "tests/harness/processes/wait_until.h"
#include "tests/usage/record_fixture.h"
#include "tests/usage/small_disk.h"
#include "tools/tvldump/record_reader.h"

namespace settings_test {
namespace {

using test_support::ExitStatus;

TEST_F(Records, FileInsteadOfFolderDropsRecordWithError) {
  fs::remove_all(kFolder);
  write(kFolder, "");
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Not a directory\n");
  EXPECT_EQ(errorsOf([] { TvlGetCollectData(deviceEvent(3, "Pad")); }), "open log failed: Not a directory\n");
  EXPECT_EQ(errorsOf([] {
              TvlGetCollectData(transfers({{1, "12345678", ""}}));
            }),
            "open log failed: Not a directory\n");
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(Records, FailedStartRecordIsAlsoLogged) {
  fs::remove_all(kFolder);
  write(kFolder, "");
  EXPECT_EQ(errorsOf(TvlWriteStartToFile), "open log failed: Not a directory\n");
  EXPECT_THAT(log_.messages(), testing::ElementsAre(error("data file open fail")));
}

TEST_F(Records, WithoutHomeRecordIsDropped) {
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("HOME");
  EXPECT_THAT(errorsOf(TvlWriteQuitToFile), StartsWith("open log failed: "));
}

TEST_F(Records, PipeAtItsPathIsNotWrittenAndDoesNotBlock) {
  ASSERT_EQ(::mkfifo(kToday, 0600), 0);
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Illegal seek\n");
}

TEST_F(Records, FolderAtItsPathDropsRecord) {
  fs::create_directory(kToday);
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Is a directory\n");
}

TEST_F(Records, AcceptPathBeyond128Bytes) {
  const std::string support = std::string(kSupport) + "/" + std::string(200, 'd');
  ::setenv("XDG_DATA_HOME", support.c_str(), 1);
  TvlWriteQuitToFile();
  EXPECT_THAT(contentsOf(support + "/Tovalin/Tovalin_2024_03_07.dat"), testing::EndsWith(kQuit));
}

TEST_F(Records, UnwritableFolderDropsRecord) {
  const auto finished = test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access(kFolder, W_OK) == 0) return 100;
    TvlWriteQuitToFile();
    return 0;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_EQ(finished.error, "open log failed: Permission denied\n");
  EXPECT_FALSE(fs::exists(kToday));
}

TEST_F(Records, LeakNoDescriptor) {
  const int before = test_support::openDescriptors();
  TvlWriteStartToFile();
  TvlWriteQuitToFile();
  TvlGetCollectData(deviceEvent(3, "Pad"));
  EXPECT_EQ(test_support::openDescriptors(), before);
}

TEST_F(Records, DeviceAtItsPathIsNotWritten) {
  const dev_t null = makedev(1, 3);
  if (::mknod(kToday, S_IFCHR | 0600, null) != 0) GTEST_SKIP() << "cannot create a device";
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Invalid argument\n");
  struct stat node {};
  ASSERT_EQ(::stat(kToday, &node), 0);
  EXPECT_EQ(node.st_mode, S_IFCHR | 0600U);
}

TEST_F(Records, LinkAtItsPathIsNotFollowed) {
  fs::create_symlink("/tmp/somebody else's", kToday);
  for (const char* content : {"", "text"}) {
    std::ofstream("/tmp/somebody else's") << content;
    EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Too many levels of symbolic links\n");
    EXPECT_EQ(contentsOf("/tmp/somebody else's"), content);
  }
}

TEST_F(SmallDisk, PartialRecordIsTruncatedAndLaterRecordsFollow) {
  TvlWriteQuitToFile();
  while (fs::file_size(kToday) + kQuitSize <= 4096) TvlWriteQuitToFile();
  const std::string before = contentsOf(kToday);
  ASSERT_NE(before.size(), 4096u) << "no partial record is possible";
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "write log failed: No space left on device\n");
  EXPECT_EQ(contentsOf(kToday), before);
  fs::remove("/tmp/support/Tovalin/TovalinUUID.txt");
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "");
  EXPECT_EQ(contentsOf(kToday), before + kQuit);
}

TEST_F(SmallDisk, HeaderBeyondDiskSpaceLeavesEmptyFileThatGetsItLater) {
  write("/tmp/support/Tovalin/ballast", std::string(4096, 'b'));
  EXPECT_THAT(errorsOf(TvlWriteStartToFile),
              testing::HasSubstr("write log failed: No space left on device\n"));
  EXPECT_EQ(contentsOf(kToday), "");
  fs::remove("/tmp/support/Tovalin/ballast");
  TvlWriteQuitToFile();
  EXPECT_EQ(contentsOf(kToday), kHeader + kQuit);
}

// The number of quit records and of `kBatch` transfers after one header. countRecords() returns nullopt for
// any other content.
struct Counts {
  int quits = 0;
  int batches = 0;
  bool operator==(const Counts&) const = default;
};

const std::vector<Entry> kBatch(30, {2, "12345678", "abcdefghi"});

std::optional<Counts> countRecords(std::string_view bytes) {
  std::string batch;
  for (const Entry& entry : kBatch) batch += "\x07\x08" + entry.size + "\x09" + entry.name;
  if (!bytes.starts_with(kHeader)) return std::nullopt;
  bytes.remove_prefix(kHeader.size());
  Counts counts;
  while (!bytes.empty()) {
    const bool quit = bytes.starts_with(kQuit);
    if (!quit && !bytes.starts_with(batch)) return std::nullopt;
    ++(quit ? counts.quits : counts.batches);
    bytes.remove_prefix(quit ? kQuitSize : batch.size());
  }
  return counts;
}

void writeBoth(int times) {
  const Message message = transfers(kBatch);
  for (int i = 0; i < times; ++i) {
    TvlWriteQuitToFile();
    TvlGetCollectData(message);
  }
}

// Two writers on a disk that another thread fills and frees, so that any write may be partial.
TEST_F(SmallDisk, NoRecordIsTornWhileDiskIsFilledAndFreed) {
  fs::remove("/tmp/support/Tovalin/TovalinUUID.txt");
  std::atomic<bool> ended = false;
  std::thread filler([&] {
    while (!ended) {
      write("/tmp/support/Tovalin/ballast", std::string(4096, 'b'));
      fs::remove("/tmp/support/Tovalin/ballast");
    }
  });
  test_support::StreamCapture errors(STDERR_FILENO);
  int whole = 0;
  for (int round = 0; round < 300; ++round) {
    write(kToday, kHeader);
    std::thread other([] { writeBoth(8); });
    writeBoth(8);
    other.join();
    if (countRecords(contentsOf(kToday))) ++whole;
  }
  ended = true;
  filler.join();
  EXPECT_THAT(errors.end(), testing::HasSubstr("write log failed: No space left on device"));
  EXPECT_EQ(whole, 300);
}

TEST_F(Records, RecordsOfTwoThreadsDoNotInterleave) {
  std::thread other([] { writeBoth(500); });
  writeBoth(500);
  other.join();
  EXPECT_EQ(countRecords(contentsOf(kToday)), (Counts{1000, 1000}));
}

TEST_F(Records, RecordsOfTwoProcessesDoNotInterleave) {
  const auto writer = [] {
    writeBoth(500);
    return 0;
  };
  test_support::ForkedCall first(writer);
  test_support::ForkedCall second(writer);
  EXPECT_EQ(first.wait().status, ExitStatus{.code = 0});
  EXPECT_EQ(second.wait().status, ExitStatus{.code = 0});
  EXPECT_EQ(countRecords(contentsOf(kToday)), (Counts{1000, 1000}));
}

TEST_F(Records, ConcurrentFirstWritersWriteOneHeader) {
  for (int round = 0; round < 50; ++round) {
    fs::remove(kToday);
    const auto writer = [] {
      TvlWriteQuitToFile();
      return 0;
    };
    test_support::ForkedCall first(writer);
    test_support::ForkedCall second(writer);
    ASSERT_EQ(first.wait().status, ExitStatus{.code = 0});
    ASSERT_EQ(second.wait().status, ExitStatus{.code = 0});
    ASSERT_EQ(countRecords(contentsOf(kToday)), (Counts{2, 0})) << "round " << round;
  }
}

// Returns true if the file has no damage except a truncated last record.
bool readsUpToItsLastWholeRecord(const std::string& bytes) {
  tools::RecordReader reader(bytes);
  while (reader.next()) continue;
  return !reader.damage() || reader.damage()->offset == bytes.size();
}

TEST_F(Records, KilledWriterLeavesFileReadableUpToLastCompleteRecord) {
  int killedInTheMiddle = 0;
  for (int attempt = 0; attempt < 200; ++attempt) {
    fs::remove(kToday);
    test_support::ForkedCall writer([] {
      writeBoth(100'000);
      return 0;
    });
    // Each attempt kills the writer at a larger file size, starting before the first byte.
    const std::size_t enough = static_cast<std::size_t>(attempt) * 97;
    ASSERT_TRUE(test_support::waitUntil([&] {
      std::error_code none;
      const auto size = fs::file_size(kToday, none);
      return enough == 0 || (!none && size >= enough);
    }));
    ASSERT_EQ(::kill(writer.pid(), SIGKILL), 0);
    EXPECT_EQ(writer.wait().status, ExitStatus{.signal = SIGKILL});
    std::error_code none;
    if (fs::file_size(kToday, none) > 0 && !none) ++killedInTheMiddle;
    ASSERT_TRUE(!fs::exists(kToday) || readsUpToItsLastWholeRecord(contentsOf(kToday)))
        << "attempt " << attempt;
  }
  EXPECT_GT(killedInTheMiddle, 100);
}

}  // namespace
}  // namespace settings_test
