#include "platform/search_path.h"

#include <gtest/gtest.h>
#include <stdlib.h>

namespace {

// XDG_DATA_HOME and HOME (null: unset) and the folder they select.
struct Case {
  const char* name;
  const char* dataHome;
  const char* home;
  std::optional<std::string> folder;
};

void PrintTo(const Case& example, std::ostream* stream) {
  *stream << example.name;
}

void set(const char* name, const char* value) {
  if (value == nullptr) {
    ::unsetenv(name);
  } else {
    ::setenv(name, value, 1);
  }
}

class ApplicationSupport : public testing::TestWithParam<Case> {};

TEST_P(ApplicationSupport, FollowsDataHomeThenHome) {
  set("XDG_DATA_HOME", GetParam().dataHome);
  set("HOME", GetParam().home);
  EXPECT_EQ(platform::applicationSupportDirectory(), GetParam().folder);
}

const std::string kLong = "/" + std::string(3000, 'd');

INSTANTIATE_TEST_SUITE_P(
    SearchPath, ApplicationSupport,
    testing::Values(Case{"DataHomeBeforeHome", "/data", "/home/me", "/data"},
                    Case{"DataHomeWithoutHome", "/data", nullptr, "/data"},
                    Case{"HomeAlone", nullptr, "/home/me", "/home/me/.local/share"},
                    Case{"EmptyDataHomeIsNone", "", "/home/me", "/home/me/.local/share"},
                    Case{"RelativeDataHomeIsIgnored", "data", "/home/me", "/home/me/.local/share"},
                    Case{"TildeIsNotExpanded", "~/data", "/home/me", "/home/me/.local/share"},
                    Case{"RelativeDataHomeAlone", "./data", nullptr, std::nullopt},
                    Case{"RelativeHome", nullptr, "home/me", std::nullopt},
                    Case{"EmptyHome", nullptr, "", std::nullopt},
                    Case{"Neither", nullptr, nullptr, std::nullopt},
                    Case{"BlanksAndForeignLetters", "/my data \u00e4", nullptr, "/my data \u00e4"},
                    Case{"LongPathIsNotCut", kLong.c_str(), nullptr, kLong},
                    Case{"FolderNeedNotExist", "/tmp/nowhere/data", nullptr, "/tmp/nowhere/data"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
