#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tools/fleet/agent_model.h"
#include "tools/fleet/day_load.h"
#include "tools/fleet/picture.h"
#include "tools/fleet/report.h"
#include "tools/fleet/simulation.h"

namespace {

using namespace fleet;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr Seconds at(int dayNumber, int hours, int minutes, int seconds) {
  return dayNumber * day + hours * hour + minutes * minute + seconds;
}

class Recorded : public Events {
 public:
  void launch(Seconds time) override { launches.push_back(time); }
  void upload(Seconds time, int files) override { uploads.emplace_back(time, files); }

  std::vector<Seconds> launches;
  std::vector<std::pair<Seconds, int>> uploads;
};

std::vector<std::pair<Seconds, int>> uploadsOf(const std::vector<Run>& runs, Seconds delay = 0) {
  Recorded events;
  Random random(1);
  AgentModel agent(delay, random, events);
  for (const Run& run : runs) agent.run(run);
  return events.uploads;
}

TEST(AgentModel, LaunchAtSecondSUploadsAtMinuteSSecondS) {
  for (int second = 0; second < 60; ++second) {
    EXPECT_THAT(uploadsOf({{at(0, 15, 7, second), at(1, 12, 0, 0)}}),
                ElementsAre(Pair(at(1, 0, second, second), 1)));
  }
}

TEST(AgentModel, LaunchAt235930UploadsAt003030) {
  EXPECT_THAT(uploadsOf({{at(0, 23, 59, 30), at(1, 12, 0, 0)}}), ElementsAre(Pair(at(1, 0, 30, 30), 1)));
}

TEST(AgentModel, LaunchUploadsPreviousDay) {
  EXPECT_THAT(uploadsOf({{at(0, 9, 0, 0), at(0, 17, 0, 0)}, {at(1, 8, 30, 12), at(1, 17, 0, 0)}}),
              ElementsAre(Pair(at(1, 8, 30, 12), 1)));
}

TEST(AgentModel, SecondLaunchOfDayUploadsNothing) {
  EXPECT_THAT(uploadsOf({{at(0, 9, 0, 0), at(0, 12, 0, 0)}, {at(0, 13, 0, 0), at(0, 17, 0, 0)}}), IsEmpty());
}

TEST(AgentModel, EndBeforePassPostponesUploadToNextLaunch) {
  EXPECT_THAT(uploadsOf({{at(0, 9, 0, 50), at(1, 0, 50, 50)}, {at(1, 8, 0, 0), at(1, 9, 0, 0)}}),
              ElementsAre(Pair(at(1, 8, 0, 0), 1)));
}

TEST(AgentModel, DaysWithoutPassAreUploadedTogether) {
  EXPECT_THAT(uploadsOf({{at(0, 23, 30, 59), at(1, 0, 30, 0)}, {at(2, 8, 0, 0), at(2, 9, 0, 0)}}),
              ElementsAre(Pair(at(2, 8, 0, 0), 2)));
}

TEST(AgentModel, NapShiftsTicks) {
  // Ticks come at :10, and at :33 after 5 h 59 min 23 s of sleep.
  EXPECT_THAT(uploadsOf({{at(0, 23, 0, 10), at(1, 12, 0, 0), {{at(0, 23, 30, 0), at(1, 5, 29, 23)}}}}),
              ElementsAre(Pair(at(1, 5, 33, 33), 1)));
}

TEST(AgentModel, NapOverMinuteOfPassDelaysItByAnHour) {
  EXPECT_THAT(uploadsOf({{at(0, 23, 0, 20), at(1, 12, 0, 0), {{at(1, 0, 19, 0), at(1, 0, 22, 0)}}}}),
              ElementsAre(Pair(at(1, 1, 20, 20), 1)));
}

// The stored second is that of the tick that saw the date change.
TEST(AgentModel, NapAfterChangeOfDateKeepsMinute) {
  EXPECT_THAT(uploadsOf({{at(0, 23, 0, 20), at(1, 12, 0, 0), {{at(1, 0, 5, 0), at(1, 0, 6, 15)}}}}),
              ElementsAre(Pair(at(1, 0, 20, 35), 1)));
}

TEST(AgentModel, DelayedPassRunsWithinDelay) {
  const auto uploads = uploadsOf({{at(0, 15, 0, 20), at(1, 12, 0, 0)}}, hour);
  ASSERT_EQ(uploads.size(), 1u);
  EXPECT_GT(uploads[0].first, at(1, 0, 20, 20));
  EXPECT_LT(uploads[0].first, at(1, 1, 20, 20));
}

TEST(AgentModel, EndOfRunCancelsDelayedPass) {
  const auto uploads =
      uploadsOf({{at(0, 15, 0, 20), at(1, 0, 20, 21)}, {at(1, 9, 0, 0), at(1, 10, 0, 0)}}, hour);
  EXPECT_THAT(uploads, ElementsAre(Pair(at(1, 9, 0, 0), 1)));
}

std::vector<Run> drawn(Launches launches, bool sleeps, std::uint64_t seed) {
  Random random(seed);
  std::vector<fleet::Run> runs;
  drawRuns(launches, sleeps, {12 * hour, 36 * hour}, random, runs);
  return runs;
}

TEST(DayPlan, RunsDoNotOverlapAndContainTheirNaps) {
  for (std::uint64_t seed = 0; seed < 3000; ++seed) {
    for (const Launches launches : {Launches::Uniform, Launches::Office, Launches::PowerCut}) {
      Seconds last = -10 * day;
      for (const fleet::Run& run : drawn(launches, seed % 2 == 0, seed)) {
        ASSERT_GE(run.launch, last);
        ASSERT_LT(run.launch, run.end);
        last = run.launch;
        for (const SleepPeriod& period : run.sleepPeriods) {
          ASSERT_GT(period.from, last) << seed;
          ASSERT_LT(period.from, period.to) << seed;
          last = period.to;
        }
        last = run.end;
      }
    }
  }
}

TEST(DayPlan, UniformCoversCountedDay) {
  for (const bool sleeps : {false, true}) {
    const auto runs = drawn(Launches::Uniform, sleeps, 7);
    EXPECT_LT(runs.front().launch, -12 * hour);
    EXPECT_GE(runs.back().end, 36 * hour);
  }
}

TEST(DayPlan, PowerCutLaunchesOnceWithinTwoMinutes) {
  for (std::uint64_t seed = 0; seed < 1000; ++seed) {
    const auto runs = drawn(Launches::PowerCut, false, seed);
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_GE(runs[0].launch, at(0, 20, 0, 29));
    EXPECT_LE(runs[0].launch, at(0, 20, 2, 1));
  }
}

// Rounding towards zero would draw the middle second twice as often as its neighbours.
TEST(DayPlan, MiddleSecondIsNoSpike) {
  Settings settings;
  settings.installations = 200'000;
  settings.launches = {{Launches::PowerCut, 1}};
  const FleetDay result = simulate(settings);
  const auto launches = result.launches.seconds();
  const auto middle = static_cast<std::size_t>(at(0, 20, 1, 15) - firstCounted);
  const double neighbours = (launches[middle - 1] + launches[middle + 1]) / 2.0;
  EXPECT_GT(neighbours, 4000);
  EXPECT_NEAR(launches[middle], neighbours, neighbours / 10);
}

TEST(DayPlan, PowerReturnsWithinCountedDayOfEveryZone) {
  for (Seconds offset = -14 * hour; offset <= 14 * hour; offset += 30 * minute) {
    const Span counted{firstCounted + offset, firstCounted + offset + day};
    Random random(1);
    std::vector<fleet::Run> runs;
    drawRuns(Launches::PowerCut, false, counted, random, runs);
    EXPECT_GE(runs[0].launch, counted.from);
    // In one zone the power returns at the end of the counted day.
    EXPECT_LT(runs[0].launch, counted.to + 2 * minute);
    EXPECT_GE(runs[0].end, counted.to);
  }
}

TEST(Zones, AcceptNameOrList) {
  EXPECT_EQ(zonesOf("utc")->size(), 1u);
  EXPECT_GT(zonesOf("world")->size(), 10u);
  const auto two = zonesOf("+05:30=3,-14:00");
  ASSERT_TRUE(two);
  EXPECT_EQ(two->at(0).choice, 5 * hour + 30 * minute);
  EXPECT_EQ(two->at(0).weight, 3);
  EXPECT_EQ(two->at(1).choice, -14 * hour);
  EXPECT_EQ(two->at(1).weight, 1);
}

TEST(Zones, InvalidTextIsRefused) {
  for (const char* text :
       {"", "mars", "+14:01", "+1:00", "+01:60", "01:00", "+01:00=", "+01:00=x", "+01:00=-1", "+01:00=0",
        "+01:00,", ",+01:00", "+01:00=nan", "+01:00=inf", "+01:00=1e10", "+01:00=1e-7", "+0a:00"})
    EXPECT_FALSE(zonesOf(text)) << text;
}

TEST(Zones, AcceptSmallestAndLargestWeights) {
  const auto zones = zonesOf("+01:00=0.000001,+02:00=1e9,+03:00=0");
  ASSERT_TRUE(zones);
  EXPECT_EQ(zones->at(0).weight, 1e-6);
  EXPECT_EQ(zones->at(1).weight, 1e9);
  EXPECT_EQ(zones->at(2).weight, 0);
}

TEST(Launches, InvalidTextIsRefused) {
  EXPECT_EQ(launchesOf("office=3,uniform=1")->size(), 2u);
  for (const char* text : {"", "never", "office=", "office=0", "office,"})
    EXPECT_FALSE(launchesOf(text)) << text;
}

TEST(WeightedIndex, DrawsInProportionToWeights) {
  const WeightedIndex index(*weightsOf("a=1,b=0,c=3"));
  Random random(5);
  std::vector<int> counts(3);
  for (int i = 0; i < 40'000; ++i) ++counts.at(index.draw(random));
  EXPECT_NEAR(counts[0], 10'000, 500);
  EXPECT_EQ(counts[1], 0);
  EXPECT_NEAR(counts[2], 30'000, 500);
}

TEST(Random, BellHasUnitDeviationAndBounds) {
  Random random(2);
  double sum = 0, squares = 0;
  constexpr int count = 200'000;
  for (int i = 0; i < count; ++i) {
    const double value = random.bell();
    ASSERT_LT(std::abs(value), 3.47);
    sum += value;
    squares += value * value;
  }
  EXPECT_NEAR(sum / count, 0, 0.02);
  EXPECT_NEAR(squares / count, 1, 0.02);
}

TEST(DayLoad, CountsOnlySecondsOfDay) {
  DayLoad load;
  for (const Seconds time : {Seconds{-1}, Seconds{0}, day - 1, day}) load.add(time);
  EXPECT_EQ(load.rate().total, 2u);
  EXPECT_EQ(load.seconds().front(), 1u);
  EXPECT_EQ(load.seconds().back(), 1u);
}

TEST(DayLoad, PercentileIsNearestRank) {
  DayLoad load;
  for (Seconds second = 0; second < day; ++second) load.add(second, static_cast<int>(second / (day / 100)));
  const Rate rate = load.rate();
  EXPECT_EQ(rate.percentile, 98u);
  EXPECT_EQ(rate.peak, 99u);
  EXPECT_EQ(rate.peakAt, 99 * (day / 100));
  EXPECT_DOUBLE_EQ(rate.mean, 49.5);
}

TEST(DayLoad, BusiestHourBeginsAtFullMinute) {
  DayLoad load;
  load.add(5 * hour + 30);
  load.add(6 * hour - 1);
  load.add(6 * hour + 29);
  load.add(20 * hour);
  EXPECT_EQ(load.busiestHour(), 5 * hour);
  EXPECT_EQ(load.rate(load.busiestHour(), hour).total, 2u);
}

TEST(Simulation, SameSeedGivesSameDay) {
  Settings settings;
  settings.installations = 2000;
  settings.sleeping = 0.5;
  const auto secondsOf = [&] {
    const FleetDay result = simulate(settings);
    const auto seconds = result.uploads.seconds();
    return std::vector<std::uint32_t>(seconds.begin(), seconds.end());
  };
  const auto first = secondsOf();
  EXPECT_EQ(secondsOf(), first);
  settings.seed = 2;
  EXPECT_NE(secondsOf(), first);
}

TEST(Simulation, DelayOfOneMinuteSpreadsSpikes) {
  Settings settings;
  settings.installations = 60'000;
  const auto peak = [&] { return simulate(settings).uploads.rate().peak; };
  EXPECT_GT(peak(), 900u);
  settings.delay = minute;
  EXPECT_LT(peak(), 60u);
}

TEST(Picture, AxisEndsAtRoundNumber) {
  const std::vector<std::pair<double, double>> cases = {
      {0, 1},     {1, 1},     {2, 2},      {2.1, 2.5},        {3, 5}, {9, 10}, {11, 20},
      {100, 100}, {101, 200}, {978, 1000}, {166'625, 200'000}};
  for (const auto& [value, top] : cases) EXPECT_EQ(axisMaximum(value), top) << value;
}

TEST(Picture, NumbersAreAbbreviated) {
  EXPECT_EQ(shortNumber(0), "0");
  EXPECT_EQ(shortNumber(750), "750");
  EXPECT_EQ(shortNumber(1250), "1.25 k");
  EXPECT_EQ(shortNumber(200'000), "200 k");
  EXPECT_EQ(shortNumber(2.5e6), "2.5 M");
}

TEST(Picture, LongCaptionIsTruncated) {
  const std::string words(picturedCaption, 'a');
  EXPECT_THAT(picture(1, words, {}), testing::HasSubstr(">" + words + "; times are UTC<"));
  EXPECT_THAT(picture(1, words + "b", {}), testing::HasSubstr("aa...; times are UTC<"));
}

TEST(Report, ClockStartsAtNoon) {
  EXPECT_EQ(clockText(0), "12:00:00");
  EXPECT_EQ(clockText(12 * hour + 61), "00:01:01");
  EXPECT_EQ(clockText(day - 1), "11:59:59");
}

TEST(Report, NumbersAreGrouped) {
  EXPECT_EQ(grouped(0), "0");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(1000), "1,000");
  EXPECT_EQ(grouped(10'000'000), "10,000,000");
}

}  // namespace
