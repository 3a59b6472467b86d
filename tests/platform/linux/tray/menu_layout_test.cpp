#include "platform/linux/tray/menu_layout.h"

#include <gtest/gtest.h>

namespace {

using platform::MenuChanges;
using platform::MenuLine;

const QList<MenuLine> lines{{.title = "One"},
                            {.separator = true},
                            {.title = "Two", .enabled = false, .picture = "PNG"},
                            {.title = "", .visible = false}};

TEST(MenuProperties, DescribeEachKindOfLine) {
  struct Row {
    MenuLine line;
    QVariantMap properties;
  };
  for (const Row& row :
       {Row{{.title = "One"}, {{"label", "One"}, {"enabled", true}, {"visible", true}}},
        Row{{.title = "Off", .enabled = false}, {{"label", "Off"}, {"enabled", false}, {"visible", true}}},
        Row{{.title = "", .visible = false}, {{"label", ""}, {"enabled", true}, {"visible", false}}},
        Row{{.separator = true}, {{"type", "separator"}, {"enabled", true}, {"visible", true}}},
        Row{{.title = "A", .picture = "PNG"},
            {{"label", "A"}, {"enabled", true}, {"visible", true}, {"icon-data", QByteArray("PNG")}}},
        // A single underscore would mark the access key.
        Row{{.title = "a_b__c & d"}, {{"label", "a__b____c & d"}, {"enabled", true}, {"visible", true}}}})
    EXPECT_EQ(platform::propertiesOf(row.line), row.properties) << row.line.title.toStdString();
}

TEST(MenuItems, IncludeMenuAndItsLines) {
  for (const int id : {0, 1, 2, 3, 4}) EXPECT_TRUE(platform::hasItem(lines, id)) << id;
  for (const int id : {-1, 5, 1000000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_FALSE(platform::hasItem(lines, id)) << id;
  EXPECT_TRUE(platform::hasItem({}, 0));
  EXPECT_FALSE(platform::hasItem({}, 1));
}

TEST(MenuItems, OnlyVisibleEnabledLinesCanBeChosen) {
  EXPECT_TRUE(platform::canBeChosen(lines, 1));
  for (const int id : {-1, 0, 2, 3, 4, 5}) EXPECT_FALSE(platform::canBeChosen(lines, id)) << id;
}

TEST(MenuLayout, HasLinesAsChildrenOfMenu) {
  const auto layout = platform::layoutOf(lines, 0, -1, {});
  EXPECT_EQ(layout.id, 0);
  EXPECT_EQ(layout.properties, (QVariantMap{{"children-display", "submenu"}}));
  ASSERT_EQ(layout.children.size(), 4);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(layout.children[i].id, i + 1);
    EXPECT_EQ(layout.children[i].properties, platform::propertiesOf(lines[i]));
    EXPECT_TRUE(layout.children[i].children.isEmpty());
  }
}

TEST(MenuLayout, IsLimitedToRequestedDepth) {
  struct Row {
    int id, depth;
    int children;
  };
  for (const Row& row : {Row{0, -1, 4}, Row{0, 0, 0}, Row{0, 1, 4}, Row{0, 100, 4}, Row{3, -1, 0}})
    EXPECT_EQ(platform::layoutOf(lines, row.id, row.depth, {}).children.size(), row.children)
        << row.id << " " << row.depth;
  EXPECT_EQ(platform::layoutOf(lines, 3, -1, {}).properties.value("label"), "Two");
}

TEST(MenuLayout, HasOnlyRequestedProperties) {
  const auto layout = platform::layoutOf(lines, 0, -1, {"label", "nonsense"});
  EXPECT_TRUE(layout.properties.isEmpty());
  EXPECT_EQ(layout.children[0].properties, (QVariantMap{{"label", "One"}}));
  EXPECT_TRUE(layout.children[1].properties.isEmpty());
}

TEST(MenuGroup, HasEachKnownItemOnce) {
  const auto ids = [](const QList<int>& asked) {
    QList<int> answered;
    for (const auto& item : platform::groupProperties(lines, asked, {})) answered.append(item.id);
    return answered;
  };
  EXPECT_EQ(ids({}), (QList<int>{0, 1, 2, 3, 4}));
  EXPECT_EQ(ids({3, 1}), (QList<int>{3, 1}));
  EXPECT_EQ(ids({3, 3, 77, -1, 3}), (QList<int>{3}));
  EXPECT_EQ(ids({77}), (QList<int>{}));
}

TEST(MenuChanges, ContainOnlyDifferences) {
  struct Row {
    const char* name;
    QList<MenuLine> before, after;
    MenuChanges changes;
  };
  const MenuLine plain{.title = "A"}, wears{.title = "A", .picture = "PNG"};
  for (const Row& row :
       {Row{"nothing", lines, lines, {}},
        Row{"a title", {plain}, {{.title = "B"}}, {.updated = {{1, {{"label", "B"}}}}}},
        Row{"the second line",
            {plain, plain},
            {plain, {.title = "A", .enabled = false}},
            {.updated = {{2, {{"enabled", false}}}}}},
        Row{"a picture that comes", {plain}, {wears}, {.updated = {{1, {{"icon-data", QByteArray("PNG")}}}}}},
        Row{"a picture that goes", {wears}, {plain}, {.removed = {{1, {"icon-data"}}}}},
        Row{"a line that comes", {plain}, {plain, plain}, {.layout = true}},
        Row{"a line that goes", {plain, plain}, {plain}, {.layout = true}}})
    EXPECT_EQ(platform::changesBetween(row.before, row.after), row.changes) << row.name;
}

}  // namespace
