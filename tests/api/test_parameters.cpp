/* Parameter routines: order of checks, deliberate oddities, and what setting has for consequences. */
#include <gtest/gtest.h>
#include <tovik.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <regex>
#include <string>
#include <vector>

namespace {

constexpr int kEcho = 1075;

extern "C" void collect(void* handle, const char* text) {
  *static_cast<std::string*>(handle) += text;
}

class Parameters : public testing::Test {
 protected:
  void SetUp() override {
    int status = -1;
    env_ = TVKopenTOVIK(&status);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(TVKgetchannels(env_, &results_channel_, &warning_channel_, &error_channel_, nullptr), 0);
    ASSERT_EQ(TVKaddfuncdest(env_, results_channel_, &results_, collect), 0);
    ASSERT_EQ(TVKaddfuncdest(env_, error_channel_, &errors_, collect), 0);
  }
  void TearDown() override { TVKcloseTOVIK(&env_); }

  int integer(int number) const {
    int value = -77;
    EXPECT_EQ(TVKgetintparam(env_, number, &value), 0) << number;
    return value;
  }
  double real(int number) const {
    double value = -77;
    EXPECT_EQ(TVKgetdblparam(env_, number, &value), 0) << number;
    return value;
  }
  std::string text(int number) const {
    std::vector<char> buffer(TVK_STR_PARAM_MAX, '?');
    EXPECT_EQ(TVKgetstrparam(env_, number, buffer.data()), 0) << number;
    return buffer.data();
  }
  std::vector<int> changed() const {
    std::vector<int> numbers(200);
    int count = 0, surplus = 0;
    EXPECT_EQ(TVKgetchgparam(env_, &count, numbers.data(), 200, &surplus), 0);
    EXPECT_EQ(surplus, 200 - count);
    numbers.resize(static_cast<size_t>(count));
    return numbers;
  }

  EnvHandle env_ = nullptr;
  ChannelHandle results_channel_ = nullptr, warning_channel_ = nullptr, error_channel_ = nullptr;
  std::string results_, errors_;
};

/* Of a line of the header: type, default and ends of the range behind a parameter. */
const std::regex kDocumented(
    R"(#define TVK_PARAM_(\w+) +(\d{4}) /\* (int|double|string) (\S+?)(, any|, (\S+) to (\S+)|, from (\S+))?(; stored only)? \*/)");

TEST_F(Parameters, TheHeaderTellsTypeDefaultAndRangeOfEachAsTheTableHasThem) {
  std::ifstream header(TOVIK_SOURCE_DIR "/include/tovik.h");
  int defined = 0;
  for (std::string line; std::getline(header, line);) {
    if (!line.starts_with("#define TVK_PARAM_") || line.find("_MAX ") != std::string::npos) continue;
    SCOPED_TRACE(line);
    std::smatch told;
    ASSERT_TRUE(std::regex_match(line, told, kDocumented));
    ++defined;
    const int number = std::stoi(told[2]);
    int type = 0;
    char description[TVK_PARAM_DESC_MAX];
    ASSERT_EQ(TVKgetparamtype(env_, number, &type), 0);
    ASSERT_EQ(TVKgetparamdesc(env_, number, description), 0);
    EXPECT_EQ(told[9].matched, std::string(description).starts_with("Stored, without effect"));
    if (type == TVK_PARAMTYPE_STRING) {
      char text[TVK_STR_PARAM_MAX];
      ASSERT_EQ(TVKinfostrparam(env_, number, text), 0);
      EXPECT_EQ(told[3], "string");
      EXPECT_EQ(told[4], '"' + std::string(text) + '"');
      continue;
    }
    double values[3];
    if (type == TVK_PARAMTYPE_INT) {
      int whole[3];
      ASSERT_EQ(TVKinfointparam(env_, number, &whole[0], &whole[1], &whole[2]), 0);
      std::copy(whole, whole + 3, values);
    } else {
      ASSERT_EQ(TVKinfodblparam(env_, number, &values[0], &values[1], &values[2]), 0);
    }
    EXPECT_EQ(told[3], type == TVK_PARAMTYPE_INT ? "int" : "double");
    EXPECT_EQ(std::stod(told[4]), values[0]);
    if (told[8].matched) {  // up to what the machine has
      EXPECT_EQ(std::stod(told[8]), values[1]);
    } else if (told[5] == ", any") {
      EXPECT_EQ(values[1], values[2]);
    } else {
      EXPECT_EQ(std::stod(told[6]), values[1]);
      EXPECT_EQ(std::stod(told[7]), values[2]);
    }
  }
  EXPECT_GT(defined, 100);
}

TEST_F(Parameters, NumbersOutsideTheBlocksAreRefusedAndGapsInsideHaveNoType) {
  for (int number :
       {-1, 0, 1000, 1128, 1999, 3000, 4011, 5006, 5999, 6000, std::numeric_limits<int>::max()}) {
    char name[TVK_PARAM_NAME_MAX] = "left over";
    int type = -1;
    EXPECT_EQ(TVKsetintparam(env_, number, 1), 1013) << number;
    EXPECT_EQ(TVKgetparamname(env_, number, name), 1013) << number;
    EXPECT_STREQ(name, "") << number;
    EXPECT_EQ(TVKgetparamtype(env_, number, &type), 1013) << number;
    EXPECT_EQ(TVKgetparamdesc(env_, number, name), 1013) << number;
  }
  for (int number : {1011, 1118, 2000, 3019, 4009}) {
    char name[TVK_PARAM_NAME_MAX] = "left over";
    int type = -1, value = 5;
    EXPECT_EQ(TVKsetintparam(env_, number, 1), 1013) << number;
    EXPECT_EQ(TVKgetintparam(env_, number, &value), 1013) << number;
    EXPECT_EQ(TVKinfointparam(env_, number, &value, nullptr, nullptr), 1013) << number;
    EXPECT_EQ(value, 5);
    EXPECT_EQ(TVKgetparamname(env_, number, name), 0) << number;
    EXPECT_STREQ(name, "") << number;
    EXPECT_EQ(TVKgetparamtype(env_, number, &type), 0) << number;
    EXPECT_EQ(type, TVK_PARAMTYPE_NONE) << number;
  }
  EXPECT_NE(errors_.find("TOVIK Error  1013: "), std::string::npos) << errors_;
}

TEST_F(Parameters, EachTypeIsServedByItsOwnRoutinesOnly) {
  double real = 3;
  int integer = 3;
  char buffer[TVK_STR_PARAM_MAX] = "3";
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_ITLIM, 5), 1013);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_TILIM, 5), 1013);
  EXPECT_EQ(TVKsetstrparam(env_, TVK_PARAM_ITLIM, "5"), 1013);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_WORKDIR, 5), 1013);
  EXPECT_EQ(TVKgetdblparam(env_, TVK_PARAM_ITLIM, &real), 1013);
  EXPECT_EQ(TVKgetintparam(env_, TVK_PARAM_TILIM, &integer), 1013);
  EXPECT_EQ(TVKgetstrparam(env_, TVK_PARAM_TILIM, buffer), 1013);
  EXPECT_EQ(TVKinfodblparam(env_, TVK_PARAM_ITLIM, &real, &real, &real), 1013);
  EXPECT_EQ(TVKinfostrparam(env_, TVK_PARAM_ITLIM, buffer), 1013);
  EXPECT_EQ(real, 3);
  EXPECT_EQ(integer, 3);
  EXPECT_STREQ(buffer, "3");
}

TEST_F(Parameters, NullArgumentsComeBeforeTheNumberAndOptionalOutputsAreSkipped) {
  EXPECT_EQ(TVKgetintparam(env_, 1, nullptr), 1004);
  EXPECT_EQ(TVKgetdblparam(env_, 1, nullptr), 1004);
  EXPECT_EQ(TVKgetstrparam(env_, 1, nullptr), 1004);
  EXPECT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, nullptr), 1004);
  EXPECT_EQ(TVKgetparamname(env_, TVK_PARAM_ITLIM, nullptr), 1004);
  EXPECT_EQ(TVKgetparamdesc(env_, TVK_PARAM_ITLIM, nullptr), 1004);
  EXPECT_EQ(TVKgetparamnum(env_, "TVK_PARAM_ITLIM", nullptr), 1004);
  int number = 0, count = 0;
  EXPECT_EQ(TVKgetparamnum(env_, nullptr, &number), 1004);
  EXPECT_EQ(TVKgetchgparam(env_, nullptr, &number, 1, &count), 1004);
  EXPECT_EQ(TVKgetchgparam(env_, &count, &number, 1, nullptr), 1004);
  EXPECT_EQ(TVKgetchgparam(env_, &count, nullptr, 1, &number), 1004);
  EXPECT_EQ(TVKinfointparam(env_, TVK_PARAM_ITLIM, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKinfodblparam(env_, TVK_PARAM_TILIM, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKinfostrparam(env_, TVK_PARAM_WORKDIR, nullptr), 0);
  EXPECT_EQ(TVKgetparamtype(env_, TVK_PARAM_ITLIM, nullptr), 0);
  EXPECT_EQ(TVKsetintparam(nullptr, TVK_PARAM_ITLIM, 1), 1002);
}

/* One sweep over all numbers: what is described is consistent, names go both ways, hidden numbers stay
 * hidden. */
TEST_F(Parameters, TheTableIsConsistent) {
  int named = 0, registered = 0;
  for (int number = 1001; number < 6000; ++number) {
    int type = 0;
    if (TVKgetparamtype(env_, number, &type) != 0 || type == TVK_PARAMTYPE_NONE) continue;
    ++registered;
    char name[TVK_PARAM_NAME_MAX], description[TVK_PARAM_DESC_MAX];
    ASSERT_EQ(TVKgetparamname(env_, number, name), 0);
    ASSERT_EQ(TVKgetparamdesc(env_, number, description), 0);
    EXPECT_EQ(name[0] == '\0', description[0] == '\0') << number;
    int found = 0;
    EXPECT_EQ(TVKgetparamnum(env_, name, &found), name[0] != '\0' ? 0 : 1028) << number;
    EXPECT_EQ(found, name[0] != '\0' ? number : -1);
    named += name[0] != '\0';
    if (type == TVK_PARAMTYPE_INT) {
      int initial = 0, low = 0, high = 0;
      ASSERT_EQ(TVKinfointparam(env_, number, &initial, &low, &high), 0);
      EXPECT_EQ(integer(number), initial) << number;
      EXPECT_TRUE(low <= initial && initial <= high) << number;
    } else if (type == TVK_PARAMTYPE_DOUBLE) {
      double initial = 0, low = 0, high = 0;
      ASSERT_EQ(TVKinfodblparam(env_, number, &initial, &low, &high), 0);
      EXPECT_EQ(real(number), initial) << number;
      const bool ranged = low != high && number != TVK_PARAM_SINGTOL;
      EXPECT_TRUE(!ranged || (low <= initial && initial <= high)) << number;
    } else {
      char initial[TVK_STR_PARAM_MAX];
      ASSERT_EQ(TVKinfostrparam(env_, number, initial), 0);
      EXPECT_EQ(text(number), initial);
    }
  }
  EXPECT_EQ(registered, 286);
  EXPECT_EQ(named, 153);
}

TEST_F(Parameters, NamesAreFoundByTheirExactText) {
  int number = 0;
  EXPECT_EQ(TVKgetparamnum(env_, "TVK_PARAM_SCRIND", &number), 0);
  EXPECT_EQ(number, TVK_PARAM_SCRIND);
  for (const char* name : {"tvk_param_scrind", "SCRIND", "TVK_PARAM_SCRIN", "TVK_PARAM_SCRIND ", ""}) {
    EXPECT_EQ(TVKgetparamnum(env_, name, &number), 1028) << name;
    EXPECT_EQ(number, -1) << name;
  }
}

TEST_F(Parameters, RangesHoldAndAFailedSetChangesNothing) {
  TVKsetintparam(env_, kEcho, 1);
  results_.clear();
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 3), 1015);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, -1), 1014);
  EXPECT_EQ(integer(TVK_PARAM_ADVIND), 1);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPRHS, 1e-10), 1014);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPRHS, 0.2), 1015);
  EXPECT_EQ(real(TVK_PARAM_EPRHS), 1e-6);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_SCRIND, 2), 1015);
  EXPECT_EQ(results_, "");
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPRHS, 1e-9), 0);  // the ends belong to the range
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPRHS, 0.1), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPINTERVAL, -2100000000), 0);
  EXPECT_EQ(integer(TVK_PARAM_MIPINTERVAL), -2100000000);
}

TEST_F(Parameters, DoublesWithoutARangeTakeEverythingAndNotANumberPassesARange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (int number :
       {TVK_PARAM_OBJLLIM, TVK_PARAM_OBJULIM, TVK_PARAM_CUTLO, TVK_PARAM_CUTUP, TVK_PARAM_OBJDIF}) {
    for (double value : {-1e300, 1e300, 0.0, HUGE_VAL}) {
      EXPECT_EQ(TVKsetdblparam(env_, number, value), 0) << number;
      EXPECT_EQ(real(number), value);
    }
  }
  TVKsetdefaults(env_);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, nan), 0);
  EXPECT_TRUE(std::isnan(real(TVK_PARAM_TILIM)));
  EXPECT_EQ(changed(), std::vector<int>{TVK_PARAM_TILIM});
}

TEST_F(Parameters, TheSingularityToleranceStartsBelowItsOwnRange) {
  EXPECT_EQ(real(TVK_PARAM_SINGTOL), 1e-13);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_SINGTOL, 1e-13), 1014);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_SINGTOL, 1e-10), 0);
  EXPECT_EQ(TVKsetdefaults(env_), 0);
  EXPECT_EQ(real(TVK_PARAM_SINGTOL), 1e-13);
}

TEST_F(Parameters, ThreadCountsAreBoundedByTheMachine) {
  const int threads = TVKEgetmaxthreads(env_);
  ASSERT_GE(threads, 1);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_THREADS, threads), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_THREADS, threads + 1), 1015);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_AUXROOTTHREADS, threads - 1), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_AUXROOTTHREADS, threads), 1015);
}

TEST_F(Parameters, TextsOfAnyLengthThatFitsComeBackWhole) {
  const std::string longest(TVK_STR_PARAM_MAX - 1, 'x');
  EXPECT_EQ(text(TVK_PARAM_WORKDIR), ".");
  EXPECT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, longest.c_str()), 0);
  EXPECT_EQ(text(TVK_PARAM_WORKDIR), longest);
  EXPECT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, (longest + "x").c_str()), 1026);
  EXPECT_EQ(text(TVK_PARAM_WORKDIR), longest);
  EXPECT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, ""), 0);
  EXPECT_EQ(text(TVK_PARAM_WORKDIR), "");
  EXPECT_EQ(changed(), std::vector<int>{TVK_PARAM_WORKDIR});
}

TEST_F(Parameters, TheEchoSwitchReportsEverySuccessfulSet) {
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 4), 0);
  EXPECT_EQ(results_, "");
  EXPECT_EQ(TVKsetintparam(env_, kEcho, 1), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 5), 0);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 0.25), 0);
  EXPECT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, "%s%n"), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_SCRIND, 2), 1015);
  EXPECT_EQ(TVKsetintparam(env_, kEcho, 0), 0);
  EXPECT_EQ(results_,
            "Parameter 1075 set to 1.\nParameter 1020 set to 5.\nParameter 1039 set to 0.25.\n"
            "Parameter 1064 set to \"%s%n\".\n");
  TVKsetintparam(env_, kEcho, 1);
  results_.clear();
  EXPECT_EQ(TVKsetdefaults(env_), 0);
  EXPECT_EQ(integer(kEcho), 0);
  EXPECT_EQ(results_, "");
}

/* Whether a condition counts as chosen is judged more narrowly than whether it may be set beside a polishing
 * time. */
TEST_F(Parameters, PolishingStartsInOneWayOnly) {
  struct Condition {
    int number;
    double active, inactive, never;
  };
  const std::vector<Condition> conditions = {
      {TVK_PARAM_POLISHAFTERNODE, 200000000, 210000000, 2100000000},
      {TVK_PARAM_POLISHAFTERINTSOL, 209999999, 250000000, 2100000000},
      {TVK_PARAM_POLISHAFTERTIME, 9e73, 1e74, 1e75},
      {TVK_PARAM_POLISHAFTEREPAGAP, 1e-3, 0, 0},
      {TVK_PARAM_POLISHAFTEREPGAP, 1e-9, 0, 0},
  };
  const auto set = [&](int number, double value) {
    int type = 0;
    TVKgetparamtype(env_, number, &type);
    return type == TVK_PARAMTYPE_INT ? TVKsetintparam(env_, number, static_cast<int>(value))
                                     : TVKsetdblparam(env_, number, value);
  };
  for (const Condition& c : conditions) {
    TVKsetdefaults(env_);
    ASSERT_EQ(set(c.number, c.active), 0) << c.number;
    EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHTIME, 10), 1807) << c.number;
    EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHTIME, 2e75), 1807)
        << "the combination comes before the range";
    EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHTIME, 0), 0) << c.number;
    ASSERT_EQ(set(c.number, c.inactive), 0) << c.number;
    EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHTIME, 10), 0) << c.number;
    EXPECT_EQ(set(c.number, c.active), 1807) << c.number;
    EXPECT_EQ(set(c.number, c.inactive), c.inactive == c.never ? 0 : 1807) << c.number;
    EXPECT_EQ(set(c.number, c.never), 0) << c.number;
  }
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_POLISHAFTERINTSOL, 0), 1014) << "integers: the range comes first";
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHAFTEREPGAP, 2), 1807)
      << "doubles: the combination comes first";
  TVKsetdefaults(env_);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHAFTEREPAGAP, nan), 0);
  EXPECT_EQ(TVKsetdblparam(env_, TVK_PARAM_POLISHTIME, 10), 1807)
      << "a gap that is no number is a chosen one";
}

TEST_F(Parameters, ChangedOnesAreListedInOrderAndTheNeededSizeCanBeAsked) {
  int count = -1, surplus = -1;
  EXPECT_EQ(TVKgetchgparam(env_, &count, nullptr, 0, &surplus), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(surplus, 0);
  TVKsetdblparam(env_, TVK_PARAM_BAREPCOMP, 1e-9);
  TVKsetintparam(env_, TVK_PARAM_ITLIM, 7);
  TVKsetstrparam(env_, TVK_PARAM_WORKDIR, "elsewhere");
  TVKsetintparam(env_, 1053, 1);  // numbers without a name are never listed
  TVKsetintparam(env_, kEcho, 1);
  TVKsetintparam(env_, TVK_PARAM_ADVIND, 1);  // its default

  EXPECT_EQ(TVKgetchgparam(env_, &count, nullptr, 0, &surplus), 1207);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(surplus, -3);
  EXPECT_EQ(errors_, "");
  int numbers[3] = {-9, -9, -9};
  EXPECT_EQ(TVKgetchgparam(env_, &count, numbers, 2, &surplus), 1207);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(surplus, -1);
  EXPECT_EQ(numbers[2], -9);
  EXPECT_NE(errors_.find("TOVIK Error  1207: "), std::string::npos) << errors_;
  EXPECT_EQ(changed(), (std::vector<int>{TVK_PARAM_ITLIM, TVK_PARAM_WORKDIR, TVK_PARAM_BAREPCOMP}));
  EXPECT_EQ(TVKsetdefaults(env_), 0);
  EXPECT_TRUE(changed().empty());
  EXPECT_EQ(integer(1053), 0) << "numbers without a name are reset too";
}

TEST_F(Parameters, StandardOutputIsConnectedOnceToThreeChannels) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_SCRIND, 1), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_SCRIND, 1), 0);
  ChannelHandle log = nullptr;
  TVKgetchannels(env_, nullptr, nullptr, nullptr, &log);
  const auto say = [&](const char* mark) {
    TVKmsgstr(results_channel_, mark);
    TVKmsgstr(warning_channel_, mark);
    TVKmsgstr(error_channel_, mark);
    TVKmsgstr(log, "log");
  };
  say("on ");
  TVKflushstdchannels(env_);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_SCRIND, 0), 0);
  EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_SCRIND, 0), 0);
  say("off ");
  TVKsetintparam(env_, TVK_PARAM_SCRIND, 1);
  TVKsetdefaults(env_);
  say("reset ");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "on on on ");
  EXPECT_EQ(results_, "on off reset ") << "other destinations stay";
}

TEST_F(Parameters, EnvironmentsAreIndependentAndChildrenInherit) {
  int status = -1;
  EnvHandle other = TVKopenTOVIK(&status);
  ASSERT_EQ(status, 0);
  TVKsetintparam(env_, TVK_PARAM_ITLIM, 7);
  TVKsetstrparam(env_, TVK_PARAM_WORKDIR, "mine");
  int value = 0;
  EXPECT_EQ(TVKgetintparam(other, TVK_PARAM_ITLIM, &value), 0);
  EXPECT_EQ(value, 2100000000);
  EnvHandle child = TVKparenv(env_, &status);
  ASSERT_EQ(status, 0);
  char directory[TVK_STR_PARAM_MAX];
  EXPECT_EQ(TVKgetintparam(child, TVK_PARAM_ITLIM, &value), 0);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(TVKgetstrparam(child, TVK_PARAM_WORKDIR, directory), 0);
  EXPECT_STREQ(directory, "mine");
  TVKsetintparam(child, TVK_PARAM_ITLIM, 8);
  EXPECT_EQ(integer(TVK_PARAM_ITLIM), 7);
  EXPECT_EQ(TVKfreeparenv(env_, &child), 0);
  EXPECT_EQ(TVKcloseTOVIK(&other), 0);
}

}  // namespace
