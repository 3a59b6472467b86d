#include "app/launch_rules.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using platform::PropertyList;
using Text = std::string;

// A value of "AppleInterfaceStyle" and whether it selects the dark appearance.
struct Style {
  const char* name;
  std::optional<PropertyList> value;
  bool dark;
};

void PrintTo(const Style& style, std::ostream* stream) {
  *stream << style.name;
}

class Appearance : public testing::TestWithParam<Style> {};

TEST_P(Appearance, IsDarkOnlyForDark) {
  EXPECT_EQ(isDarkAppearance(GetParam().value), GetParam().dark);
}

INSTANTIATE_TEST_SUITE_P(
    LaunchRules, Appearance,
    testing::Values(
        Style{"Dark", PropertyList(Text("Dark")), true}, Style{"LowerCase", PropertyList(Text("dark")), true},
        Style{"UpperCase", PropertyList(Text("DARK")), true},
        Style{"MixedCase", PropertyList(Text("dArK")), true}, Style{"Missing", std::nullopt, false},
        Style{"Light", PropertyList(Text("Light")), false}, Style{"EmptyText", PropertyList(Text()), false},
        Style{"LongerText", PropertyList(Text("darker")), false},
        Style{"ShorterText", PropertyList(Text("dar")), false},
        Style{"BlankBehind", PropertyList(Text("dark ")), false},
        Style{"ByteZeroBehind", PropertyList(Text("dark\0", 5)), false},
        Style{"NeighboursOfTheLetters", PropertyList(Text("\x04\x01\x12\x0b")), false},
        Style{"ForeignLetters", PropertyList(Text("d\u0430rk")), false},
        Style{"Boolean", PropertyList(true), false}, Style{"Number", PropertyList(std::int64_t{1}), false},
        Style{"Array", PropertyList(PropertyList::Array{PropertyList(Text("Dark"))}), false},
        Style{"Data", PropertyList(PropertyList::Data{std::byte{'d'}}), false}),
    [](const auto& test) { return test.param.name; });

// The paths of the agent's bundle and of the enclosing bundle (nullopt: none).
struct Place {
  const char* name;
  std::string_view agent;
  std::optional<std::string> mainApplication;
};

void PrintTo(const Place& place, std::ostream* stream) {
  *stream << place.agent;
}

class BundlePath : public testing::TestWithParam<Place> {};

TEST_P(BundlePath, IsPathOfEnclosingBundle) {
  EXPECT_EQ(mainApplicationBundlePath(GetParam().agent), GetParam().mainApplication);
}

INSTANTIATE_TEST_SUITE_P(
    LaunchRules, BundlePath,
    testing::Values(
        Place{"Usual", "/X/Y.app/Contents/Resources/TovalinTray.app", "/X/Y.app"},
        Place{"BlanksAreKept", "/My Programs/Y (2).app/Contents/Resources/TovalinTray.app",
              "/My Programs/Y (2).app"},
        Place{"ForeignLettersAreKept", "/\u00c4\u65e5/Y.app/Contents/Resources/TovalinTray.app",
              "/\u00c4\u65e5/Y.app"},
        Place{"OnlyTheFirstIsTakenOut",
              "/Y.app/Contents/Resources/TovalinTray.app/Z.app/Contents/Resources/TovalinTray.app",
              "/Y.app/Z.app/Contents/Resources/TovalinTray.app"},
        Place{"WhatFollowsStays", "/Y.app/Contents/Resources/TovalinTray.app/more", "/Y.app/more"},
        Place{"AtTheRoot", "/Contents/Resources/TovalinTray.app", std::nullopt},
        Place{"Elsewhere", "/X/TovalinTray.app", std::nullopt}, Place{"Empty", "", std::nullopt},
        Place{"OtherCase", "/Y.app/contents/resources/tovalintray.app", std::nullopt},
        Place{"CutOff", "/Y.app/Contents/Resources/TovalinTray.ap", std::nullopt},
        Place{"OtherName", "/Y.app/Contents/Resources/Other.app", std::nullopt}),
    [](const auto& test) { return test.param.name; });

TEST(UpdateNotice, CommandNamesBundleTwice) {
  EXPECT_EQ(updateNoticeCommand("/X/Y.app"),
            "open -a /X/Y.app/Contents/Resources/tovalinnotification.app --args "
            "-title \"Tovalin Notification\" -subtitle \"New version available\" "
            "-message \"Do you want to install now?\" -closeLabel No -actions Yes "
            "-bundlepath /X/Y.app -timeout 10");
}

TEST(UpdateNotice, PathIsInsertedVerbatim) {
  const auto command = updateNoticeCommand("/My $Y \"%s\".app");
  ASSERT_TRUE(command);
  EXPECT_TRUE(command->starts_with("open -a /My $Y \"%s\".app/Contents/Resources/"));
  EXPECT_TRUE(command->ends_with("-bundlepath /My $Y \"%s\".app -timeout 10"));
}

TEST(UpdateNotice, FixedTextIs214Bytes) {
  const auto command = updateNoticeCommand("");
  ASSERT_TRUE(command);
  EXPECT_EQ(command->size(), 214U);
}

TEST(UpdateNotice, PathOf404BytesFits) {
  const auto command = updateNoticeCommand(std::string(404, 'p'));
  ASSERT_TRUE(command);
  EXPECT_EQ(command->size(), 1022U);
}

TEST(UpdateNotice, PathOf405BytesDoesNotFit) {
  EXPECT_EQ(updateNoticeCommand(std::string(405, 'p')), std::nullopt);
}

TEST(UpdateNotice, LimitCountsBytes) {
  std::string path;
  for (int i = 0; i < 203; ++i) path += "\u00e4";
  EXPECT_EQ(updateNoticeCommand(path), std::nullopt) << "203 letters of two bytes each";
}

}  // namespace
