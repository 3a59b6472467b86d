#include <sys/stat.h>

#include "tests/platform/linux/helpers/collectlogs_fixture.h"

namespace helper_test {
namespace {

// Packs target_ of CollectLogs.
class Archiving : public CollectLogs {
 protected:
  [[nodiscard]] Ended archive(const std::string& script) const {
    return collect({"archive", target_, desktop_, "a.zip", "sh", "-c", script});
  }
  [[nodiscard]] std::string archived() const { return contentsOf(desktop_ + "/a.zip"); }

  const std::string desktop_ = root_ + "/a desktop/below";
};

TEST_F(Archiving, OutputOfCommandBecomesArchiveWithMode0600) {
  EXPECT_EQ(archive("printf packed").code, 0);
  EXPECT_THAT(namesIn(desktop_), ElementsAre("a.zip"));
  EXPECT_EQ(archived(), "packed");
  EXPECT_EQ(fs::status(desktop_ + "/a.zip").permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(desktop_).permissions(), fs::perms(0700));
}

TEST_F(Archiving, CommandWritesToRegularFile) {
  EXPECT_EQ(archive("test -f /proc/self/fd/1 && printf packed").code, 0);
  EXPECT_EQ(archived(), "packed");
}

TEST_F(Archiving, FailedCommandLeavesNoArchive) {
  for (const char* script : {"printf half; exit 12", "printf half; kill -9 $$", "exit 127"}) {
    const Ended ended = archive(script);
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.error, HasSubstr("sh has failed"));
    EXPECT_THAT(namesIn(desktop_), IsEmpty()) << script;
  }
  EXPECT_EQ(collect({"archive", target_, desktop_, "a.zip", "no-such-command"}).code, 1);
  EXPECT_THAT(namesIn(desktop_), IsEmpty());
}

TEST_F(Archiving, ArchiveWithoutUnreadableFilesIsKept) {
  EXPECT_EQ(archive("printf packed; exit 18").code, 0);
  EXPECT_EQ(archived(), "packed");
}

TEST_F(Archiving, LinkOrFifoAtItsNameIsReplacedUnopened) {
  fs::create_directories(desktop_);
  writeFile(root_ + "/spared", "spared");
  for (const char* name : {"/a.zip", "/.a.zip"}) {
    fs::create_symlink(root_ + "/spared", desktop_ + name);
    EXPECT_EQ(archive("printf packed").code, 0);
    EXPECT_EQ(archived(), "packed");
    fs::remove(desktop_ + "/a.zip");
    ASSERT_EQ(::mkfifo((desktop_ + name).c_str(), 0666), 0);
    EXPECT_EQ(archive("printf packed").code, 0);
    EXPECT_EQ(archived(), "packed");
  }
  EXPECT_EQ(contentsOf(root_ + "/spared"), "spared");
  EXPECT_THAT(namesIn(desktop_), ElementsAre("a.zip"));
}

TEST_F(Archiving, EarlierArchiveSurvivesFailure) {
  ASSERT_EQ(archive("printf earlier").code, 0);
  EXPECT_EQ(archive("printf half; exit 1").code, 1);
  EXPECT_EQ(archived(), "earlier");
}

TEST_F(Archiving, FolderAtItsNameIsKept) {
  fs::create_directories(desktop_ + "/a.zip");
  EXPECT_EQ(archive("printf packed").code, 1);
  EXPECT_THAT(namesIn(desktop_), ElementsAre("a.zip"));
  EXPECT_TRUE(fs::is_directory(desktop_ + "/a.zip"));
}

TEST_F(Archiving, FileInsteadOfTargetFolderIsReported) {
  writeFile(desktop_, "a file");
  const Ended ended = archive("printf packed");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("Not a directory"));
}

TEST_F(Archiving, LinkAsSourceFolderIsNotPacked) {
  fs::rename(target_, root_ + "/elsewhere");
  fs::create_directory_symlink(root_ + "/elsewhere", target_);
  EXPECT_EQ(archive("printf packed").code, 1);
  EXPECT_FALSE(fs::exists(desktop_));
}

}  // namespace
}  // namespace helper_test
