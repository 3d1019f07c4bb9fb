/* Numbers have a point in every file and message, whatever the language of the user. A locale with a comma is
 * compiled into the test's folder where none is installed. */
#include <clocale>
#include <cstdlib>
#include <string>

#include "support/file_fixture.h"

namespace {

class Locale : public support::WithFiles {
 protected:
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
    WithFiles::TearDown();
  }
  /* False when there is none and none can be made. */
  bool use_comma() {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"}) {
      if (std::setlocale(LC_ALL, name) != nullptr) return true;
    }
    const std::string command = "localedef --no-archive -c -i de_DE -f UTF-8 '" + path("de_DE.UTF-8") +
                                "' >'" + path("localedef.log") + "' 2>&1";
    if (std::system(command.c_str()) == -1) return false;
    setenv("LOCPATH", folder_.c_str(), 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  }
  /* Every file that the library writes, and what the results channel says. */
  std::string everything() {
    std::string all;
    const auto add = [&](const char* name, int code) {
      EXPECT_EQ(code, 0) << name << errors();
      all += std::string(name) + ":\n" + content(name);
    };
    add("a.lp", TVKwriteprob(env_, lp_, path("a.lp").c_str(), nullptr));
    add("a.mps", TVKwriteprob(env_, lp_, path("a.mps").c_str(), nullptr));
    add("a.prm", TVKwriteparam(env_, path("a.prm").c_str()));
    add("a.sol", TVKsolwrite(env_, lp_, path("a.sol").c_str()));
    add("a.vec", TVKvecwrite(env_, lp_, path("a.vec").c_str()));
    results();
    EXPECT_EQ(TVKdisplayprob(env_, lp_, results_), 0);
    EXPECT_EQ(TVKdisplaysummary(env_, lp_, results_), 0);
    return all + results();
  }
};

TEST_F(Locale, NumbersHaveAPoint) {
  ASSERT_EQ(
      read_text("model.lp", "min 0.5 x + 0.25 y\nst\n r: 1.25 x + 3.5 y >= 2.75\nbounds\n y <= 0.125\nend\n"),
      0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPOPT, 1.5e-7), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  const std::string plain = everything();
  if (!use_comma()) GTEST_SKIP() << "no locale with a comma: " << content("localedef.log");
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  EXPECT_EQ(everything(), plain);
  for (const char* name : {"a.lp", "a.mps"}) {
    ASSERT_EQ(read_file(name), 0) << errors();
    ASSERT_EQ(TVKlpopt(env_, lp_), 0);
    double value = 0;
    ASSERT_EQ(TVKgetobjval(env_, lp_, &value), 0);
    EXPECT_DOUBLE_EQ(value, 0.5 * (2.75 - 3.5 * 0.125) / 1.25 + 0.25 * 0.125);
  }
  ASSERT_EQ(TVKreadcopyparam(env_, path("a.prm").c_str()), 0) << errors();
  double tolerance = 0;
  ASSERT_EQ(TVKgetdblparam(env_, TVK_PARAM_EPOPT, &tolerance), 0);
  EXPECT_EQ(tolerance, 1.5e-7);
  EXPECT_EQ(TVKreadcopysol(env_, lp_, path("a.sol").c_str()), 0) << errors();
  EXPECT_EQ(TVKreadcopyvec(env_, lp_, path("a.vec").c_str()), 0) << errors();
}

}  // namespace
