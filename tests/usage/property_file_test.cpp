#include "usage/property_file.h"

#include <cstring>

#include "app/globals.h"
#include "tests/usage/settings_fixture.h"

namespace settings_test {
namespace {

constexpr std::uint32_t kUntouched = 0xDEADBEEF;

// The result of GetProperty() with a value initialised to `kUntouched`.
struct Property {
  std::int32_t status = 0;
  std::uint32_t value = kUntouched;

  bool operator==(const Property&) const = default;
};

void PrintTo(const Property& property, std::ostream* stream) {
  *stream << "status " << property.status << ", value " << property.value;
}

Property get(const char* key) {
  Property property;
  property.status = GetProperty(key, property.value);
  return property;
}

constexpr Property kUnreadable{-1, kUntouched};
constexpr Property kLeft{0, kUntouched};

std::string xmlList(const std::string& root) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">" +
         root + "</plist>\n";
}

class PropertyFile : public LoggedSettings {
 protected:
  void SetUp() override {
    LoggedSettings::SetUp();
    putBundleAt(std::string(kSupport) + "/Main.app");
  }
  void TearDown() override {
    std::memset(gBundlePath, 0, sizeof gBundlePath);
    LoggedSettings::TearDown();
  }

  void putBundleAt(const std::string& path) {
    ASSERT_LT(path.size(), sizeof gBundlePath);
    std::memset(gBundlePath, 0, sizeof gBundlePath);
    path.copy(gBundlePath, sizeof gBundlePath - 1);
    fs::create_directories(path + "/Contents");
    file_ = path + "/Contents/TovalinPorperty.plist";
  }
  void putDictionary(const std::string& entries) { write(file_, xmlList("<dict>" + entries + "</dict>")); }

  void expectUnreadable(const std::string& message) {
    EXPECT_EQ(get("Autorun"), kUnreadable);
    EXPECT_THAT(log_.messages(), testing::ElementsAre(error(message)));
  }

  std::string file_;
};

TEST_F(PropertyFile, TrueIsOne) {
  putDictionary("<key>Autorun</key><true/>");
  EXPECT_EQ(get("Autorun"), (Property{0, 1}));
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(PropertyFile, FalseClearsAllBytes) {
  putDictionary("<key>Autorun</key><false/>");
  EXPECT_EQ(get("Autorun"), (Property{0, 0}));
}

TEST_F(PropertyFile, EachKeyHasItsOwnValue) {
  putDictionary("<key>Autorun</key><false/><key>Active</key><true/><key>Other</key><string>x</string>");
  EXPECT_EQ(get("Autorun"), (Property{0, 0}));
  EXPECT_EQ(get("Active"), (Property{0, 1}));
}

TEST_F(PropertyFile, MissingKeyKeepsValue) {
  putDictionary("<key>Active</key><true/>");
  EXPECT_EQ(get("Autorun"), kLeft);
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(PropertyFile, EmptyDictionaryKeepsValue) {
  putDictionary("");
  EXPECT_EQ(get("Autorun"), kLeft);
}

TEST_F(PropertyFile, KeyIsCaseSensitive) {
  putDictionary("<key>autorun</key><true/>");
  EXPECT_EQ(get("Autorun"), kLeft);
}

TEST_F(PropertyFile, KeyOfInnerDictionaryIsIgnored) {
  putDictionary("<key>Inner</key><dict><key>Autorun</key><true/></dict>");
  EXPECT_EQ(get("Autorun"), kLeft);
}

TEST_F(PropertyFile, OtherTypeThanBooleanKeepsValue) {
  for (const char* value : {"<string>true</string>", "<integer>1</integer>", "<real>1</real>", "<array/>"}) {
    putDictionary(std::string("<key>Autorun</key>") + value);
    EXPECT_EQ(get("Autorun"), kLeft) << value;
  }
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(PropertyFile, ReadsBinaryList) {
  using namespace std::string_literals;
  write(file_,
        "bplist00"
        "\xd2\x01\x02\x03\x04"s
        "\x57"
        "Autorun"
        "\x56"
        "Active"
        "\x09\x08"
        "\x08\x0d\x15\x1c\x1d"
        "\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x05\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x1e"s);
  EXPECT_EQ(get("Autorun"), (Property{0, 1}));
  EXPECT_EQ(get("Active"), (Property{0, 0}));
}

TEST_F(PropertyFile, PathMayContainBlanksAndNonAscii) {
  putBundleAt("/tmp/support/My Main (2) \u00e4\u65e5.app");
  putDictionary("<key>Autorun</key><true/>");
  EXPECT_EQ(get("Autorun"), (Property{0, 1}));
}

TEST_F(PropertyFile, PathBeyond512BytesIsNotTruncated) {
  putBundleAt("/tmp/support/" + std::string(250, 'a') + "/" + std::string(250, 'b') + "/" +
              std::string(250, 'c') + "/Main.app");
  putDictionary("<key>Autorun</key><true/>");
  EXPECT_EQ(get("Autorun"), (Property{0, 1}));
}

TEST_F(PropertyFile, FileIsReadAtEachCall) {
  putDictionary("<key>Autorun</key><true/>");
  EXPECT_EQ(get("Autorun"), (Property{0, 1}));
  putDictionary("<key>Autorun</key><false/>");
  EXPECT_EQ(get("Autorun"), (Property{0, 0}));
}

TEST_F(PropertyFile, PathOfInvalidUtf8IsBadUrl) {
  putBundleAt("/tmp/support/\xff.app");
  expectUnreadable("GetProperty CFURLCreateWithFileSystemPath failed");
}

TEST_F(PropertyFile, FolderAtItsPathFailsStreamCreation) {
  fs::create_directory(file_);
  expectUnreadable("GetProperty CFReadStreamCreateWithFile failed");
}

TEST_F(PropertyFile, PipeAtItsPathDoesNotBlock) {
  ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
  const auto finished = test_support::runForked([] { return get("Autorun") == kUnreadable ? 0 : 1; });
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
}

TEST_F(PropertyFile, MissingFileFailsOpen) {
  expectUnreadable("GetProperty CFReadStreamOpen error");
}

TEST_F(PropertyFile, UnreadableFileFailsOpen) {
  putDictionary("<key>Autorun</key><true/>");
  fs::permissions(file_, fs::perms(0));
  const auto finished = test_support::runForked([this] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access(file_.c_str(), R_OK) == 0) return 100;
    return get("Autorun") == kUnreadable ? 0 : 1;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
  EXPECT_THAT(log_.messages(), testing::ElementsAre(error("GetProperty CFReadStreamOpen error")));
}

TEST_F(PropertyFile, DamagedFileFailsParsing) {
  write(file_, xmlList("<dict><key>Autorun</key>"));
  expectUnreadable("GetProperty CFPropertyListCreateWithStream error");
}

TEST_F(PropertyFile, EmptyFileFailsParsing) {
  write(file_, "");
  expectUnreadable("GetProperty CFPropertyListCreateWithStream error");
}

TEST_F(PropertyFile, OtherRootThanDictionaryFailsParsing) {
  write(file_, xmlList("<array><string>Autorun</string></array>"));
  expectUnreadable("GetProperty CFPropertyListCreateWithStream error");
}

TEST_F(PropertyFile, LeaksNoDescriptor) {
  static_cast<void>(get("Autorun"));  // opens the syslog connection
  const int before = test_support::openDescriptors();
  putDictionary("<key>Autorun</key><true/>");
  static_cast<void>(get("Autorun"));
  write(file_, "<damaged");
  static_cast<void>(get("Autorun"));
  EXPECT_EQ(test_support::openDescriptors(), before);
}

}  // namespace
}  // namespace settings_test
