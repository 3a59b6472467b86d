#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/companions/companion_run.h"
#include "tests/harness/processes/file_contents.h"

namespace {

using companions_test::builtBundle;
using companions_test::Finished;
using companions_test::runToEnd;
using companions_test::writeScript;
using test_support::ExitStatus;

const std::string programs = "/tmp/programs";
constexpr const char* softwareCentre = "appstream://com.kesmoor.tovalintrayagent\n";
constexpr const char* downloadPage = TOVALIN_DOWNLOAD_PAGE "\n";

// The updater with fake system programs, which are the only ones on its PATH.
class Updater : public testing::Test {
 protected:
  void SetUp() override { writeScript(programs + "/xdg-open", "echo \"$*\"; exit 5"); }
  void TearDown() override { std::filesystem::remove_all(programs); }

  static void offerPackage(const char* lines) {
    writeScript(programs + "/apt-cache",
                std::string("[ \"$*\" = 'madison tovalin-tray' ] && printf '") + lines + "'");
  }
  static void haveHandler(const char* name) {
    writeScript(
        programs + "/xdg-mime",
        std::string("[ \"$*\" = 'query default x-scheme-handler/appstream' ] && printf '") + name + "'");
  }

  static Finished run(const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> argv = {builtBundle() +
                                     "/Contents/Resources/tovalinupdate.app/Contents/MacOS/tovalinupdate"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return runToEnd(argv, {.environment = {{"PATH", programs}}});
  }
};

constexpr const char* offered =
    "tovalin-tray | 1.1.0 | https://packages.tovalin.example bookworm/main amd64 Packages\\n";
constexpr const char* handler = "org.gnome.Software.desktop\\n";

TEST_F(Updater, OpensSoftwareCentreIfItCanUpdatePackage) {
  offerPackage(offered);
  haveHandler(handler);
  EXPECT_EQ(run().output, softwareCentre);
}

TEST_F(Updater, OpensDownloadPageForPackageInstalledFromFile) {
  offerPackage("");
  haveHandler(handler);
  EXPECT_EQ(run().output, downloadPage);
}

TEST_F(Updater, OpensDownloadPageWithoutSoftwareCentre) {
  offerPackage(offered);
  haveHandler("");
  EXPECT_EQ(run().output, downloadPage);
}

TEST_F(Updater, OpensDownloadPageOnSystemWithoutAptAndXdgMime) {
  const Finished finished = run();
  EXPECT_EQ(finished.output, downloadPage);
  EXPECT_EQ(finished.error, "");
}

TEST_F(Updater, ReturnsStatusOfXdgOpen) {
  EXPECT_EQ(run().status, ExitStatus{.code = 5});
}

TEST_F(Updater, RefusesArguments) {
  const Finished finished = run({"--wrong"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.output, "");
  EXPECT_EQ(finished.error, "usage: tovalinupdate\n");
}

}  // namespace
