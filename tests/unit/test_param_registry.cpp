/* What the parameter routines do inside an environment: counted work and the random state. */
#include <gtest/gtest.h>

#include "env/environment.h"
#include "param/hidden.h"
#include "param/registry.h"

namespace tovik::param {
namespace {

class Registry : public testing::Test {
 protected:
  Registry() {
    env_.work = &env_.own_work;
    EXPECT_TRUE(install(env_).ok());
    env_.own_work.ticks = 0;
  }
  std::uint64_t work() const { return env_.own_work.ticks; }
  Environment env_;
};

TEST_F(Registry, LookUpsAndWalksAreCountedAsWork) {
  locate(env_, TVK_PARAM_NETDISPLAY);
  EXPECT_EQ(work(), 11u);
  locate(env_, 3000);
  EXPECT_EQ(work(), 22u);
  EXPECT_EQ(locate_typed(env_, 6000, Type::integer), nullptr);
  EXPECT_EQ(work(), 22u) << "numbers that cannot be parameters are refused before the table is consulted";
  reset(env_);
  EXPECT_EQ(work(), 22u + 11u + 316u) << "every position of the five blocks is visited";
}

TEST_F(Registry, TheSeedIsSetCheckedAndReset) {
  EXPECT_TRUE(set_integer(env_, kRandomSeed, 5).ok());
  EXPECT_EQ(set_integer(env_, kRandomSeed, -1).code(), 1014);
  EXPECT_EQ(env_.settings.integer(kRandomSeed), 5);
  reset(env_);
  EXPECT_EQ(env_.settings.integer(kRandomSeed), 201004084);
}

TEST_F(Registry, CheckingStoresNothing) {
  EXPECT_TRUE(check_integer(env_, TVK_PARAM_ITLIM, 9).ok());
  EXPECT_TRUE(check_real(env_, TVK_PARAM_TILIM, 9).ok());
  EXPECT_TRUE(check_text(env_, TVK_PARAM_WORKDIR, "x").ok());
  for (const Entry& entry : entries()) EXPECT_FALSE(is_changed(env_, entry)) << entry.number;
}

}  // namespace
}  // namespace tovik::param
