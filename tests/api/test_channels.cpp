/* Message channels: destinations, their order, changes while a message is delivered, the log file. */
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "support/environment_fixture.h"

namespace {

class Channels : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    channel_ = TVKaddchannel(env_);
    ASSERT_NE(channel_, nullptr);
  }
  ChannelHandle channel_ = nullptr;
};

std::string contents(FILE* file) {
  std::string text;
  std::rewind(file);
  for (int c; (c = std::fgetc(file)) != EOF;) text += static_cast<char>(c);
  return text;
}

TEST_F(Channels, NullAndUnknownChannelsAndDestinations) {
  std::string text;
  EXPECT_EQ(TVKaddfpdest(env_, nullptr, stdout), 1051);
  EXPECT_EQ(TVKaddfpdest(env_, channel_, nullptr), 1052);
  EXPECT_EQ(TVKdelfpdest(env_, channel_, stdout), 1052);
  EXPECT_EQ(TVKaddfuncdest(env_, nullptr, nullptr, support::keep_text), 1051);
  EXPECT_EQ(TVKaddfuncdest(env_, channel_, &text, nullptr), 1053);
  EXPECT_EQ(TVKdelfuncdest(env_, channel_, &text, support::keep_text), 1053);
  EXPECT_EQ(TVKdelchannel(env_, nullptr), 1004);
  const ChannelHandle stale = channel_;
  EXPECT_EQ(TVKdelchannel(env_, &channel_), 0);
  EXPECT_EQ(channel_, nullptr);
  ChannelHandle again = stale;
  EXPECT_EQ(TVKdelchannel(env_, &again), 1051);
  EXPECT_EQ(TVKdisconnectchannel(env_, stale), 1051);
  EXPECT_EQ(TVKmsg(stale, "%d", 12345), 5);
  EXPECT_EQ(TVKmsg(nullptr, "%s", "length still counts"), 19);
}

TEST_F(Channels, NewestDestinationFirstAndHandlesTellFunctionsApart) {
  struct Tag {
    std::string* out;
    char letter;
  };
  std::string order;
  Tag a{&order, 'a'}, b{&order, 'b'};
  const auto tag = [](void* handle, const char*) {
    const Tag* self = static_cast<Tag*>(handle);
    *self->out += self->letter;
  };
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, &a, tag), 0);
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, &b, tag), 0);
  EXPECT_EQ(TVKmsgstr(channel_, "100%d of it"), 11);
  EXPECT_EQ(order, "ba");
  ASSERT_EQ(TVKdelfuncdest(env_, channel_, &a, tag), 0);
  EXPECT_EQ(TVKdelfuncdest(env_, channel_, &a, tag), 1053);
  TVKmsgstr(channel_, "x");
  EXPECT_EQ(order, "bab");
}

TEST_F(Channels, LongMessagesArriveWhole) {
  std::string text;
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, &text, support::keep_text), 0);
  for (size_t length : {size_t{0}, size_t{1022}, size_t{1023}, size_t{1024}, size_t{5000}, size_t{1000000}}) {
    const std::string sent(length, 'm');
    text.clear();
    EXPECT_EQ(TVKmsg(channel_, "%s|", sent.c_str()), static_cast<int>(length) + 1);
    EXPECT_EQ(text, sent + "|");
  }
}

/* A destination that takes other destinations, or the whole channel, away while a message is delivered. */
TEST_F(Channels, ListsMayChangeUnderDelivery) {
  struct Meddler {
    EnvHandle env;
    ChannelHandle channel;
    std::string older, newer;
    bool delete_channel;
    int calls;
  };
  const auto meddle = [](void* handle, const char*) {
    auto* self = static_cast<Meddler*>(handle);
    ++self->calls;
    TVKaddfuncdest(self->env, self->channel, &self->newer, support::keep_text);
    TVKdelfuncdest(self->env, self->channel, &self->older, support::keep_text);
    if (self->delete_channel) TVKdelchannel(self->env, &self->channel);
  };
  Meddler meddler{env_, channel_, {}, {}, false, 0};
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, &meddler.older, support::keep_text), 0);
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, &meddler, meddle), 0);
  TVKmsgstr(channel_, "first");
  EXPECT_EQ(meddler.older, "");
  EXPECT_EQ(meddler.newer, "");
  meddler.delete_channel = true;
  TVKmsgstr(channel_, "second");
  EXPECT_EQ(meddler.newer, "second");
  EXPECT_EQ(meddler.channel, nullptr);
  TVKmsgstr(channel_, "third");
  EXPECT_EQ(meddler.calls, 2);
}

TEST_F(Channels, ASolveGoesOnWhenTheChannelThatItWritesToIsDeleted) {
  struct Deleter {
    EnvHandle env;
    ChannelHandle channel;
    int calls, code;
  } deleter{env_, results_, 0, -1};
  const auto remove = [](void* handle, const char*) {
    auto* self = static_cast<Deleter*>(handle);
    ++self->calls;
    self->code = TVKdelchannel(self->env, &self->channel);
  };
  int status = 0;
  ProbHandle lp = TVKcreateprob(env_, &status, "knapsack");
  ASSERT_NE(lp, nullptr);
  const double objective[] = {5, 4, 3, 1}, upper[] = {1, 1, 1, 1}, rhs[] = {5, 4}, values[] = {2, 3, 1, 1};
  const char types[] = "BBBB", senses[] = "LL";
  const int begin[] = {0, 3}, index[] = {0, 1, 2, 3};
  ASSERT_EQ(TVKnewcols(env_, lp, 4, objective, nullptr, upper, types, nullptr), 0);
  ASSERT_EQ(TVKaddrows(env_, lp, 0, 2, 4, rhs, senses, begin, index, values, nullptr, nullptr), 0);
  ASSERT_EQ(TVKchgobjsen(env_, lp, TVK_MAX), 0);
  ASSERT_EQ(TVKaddfuncdest(env_, results_, &deleter, remove), 0);
  EXPECT_EQ(TVKmipopt(env_, lp), 0);
  EXPECT_EQ(deleter.calls, 1);
  EXPECT_EQ(deleter.code, 0);
  EXPECT_EQ(deleter.channel, nullptr);
  double best = 0;
  EXPECT_EQ(TVKgetobjval(env_, lp, &best), 0);
  EXPECT_DOUBLE_EQ(best, 10);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
}

TEST_F(Channels, AnEnvironmentIsNotClosedUnderItsOwnMessage) {
  struct Closer {
    EnvHandle env;
    int code;
  } closer{env_, 0};
  const auto close = [](void* handle, const char*) {
    auto* self = static_cast<Closer*>(handle);
    EnvHandle env = self->env;
    self->code = TVKcloseTOVIK(&env);
  };
  ASSERT_EQ(TVKaddfuncdest(env_, warning_, &closer, close), 0);
  TVKmsgstr(warning_, "about to be closed?\n");
  EXPECT_EQ(closer.code, 1804);
  EXPECT_STREQ(TVKversion(env_), "12.2.0.0");
}

TEST_F(Channels, WhatADestinationThrowsStaysInside) {
  std::string text;
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, &text, support::keep_text), 0);
  ASSERT_EQ(TVKaddfuncdest(env_, channel_, nullptr, [](void*, const char*) { throw 1; }), 0);
  EXPECT_NO_THROW(TVKmsgstr(channel_, "on"));
  EXPECT_EQ(text, "on");
}

TEST_F(Channels, FilesAreFlushedByDeletingAndLeftOpen) {
  FILE* file = std::tmpfile();
  ASSERT_EQ(TVKaddfpdest(env_, channel_, file), 0);
  TVKmsgstr(channel_, "kept\n");
  ASSERT_EQ(TVKdisconnectchannel(env_, channel_), 0);
  TVKmsgstr(channel_, "lost\n");
  ASSERT_EQ(TVKaddfpdest(env_, channel_, file), 0);
  TVKmsgstr(channel_, "more\n");
  ASSERT_EQ(TVKdelchannel(env_, &channel_), 0);
  EXPECT_EQ(contents(file), "kept\nmore\n");
  std::fclose(file);
}

TEST_F(Channels, TheLogFileFollowsAllFourChannels) {
  FILE *first = std::tmpfile(), *second = std::tmpfile(), *set = nullptr;
  const auto say_everywhere = [&](const char* text) {
    for (ChannelHandle channel : {results_, warning_, error_, log_}) TVKmsgstr(channel, text);
  };
  ASSERT_EQ(TVKsetlogfile(env_, first), 0);
  ASSERT_EQ(TVKsetlogfile(env_, first), 0);
  say_everywhere("1");
  ASSERT_EQ(TVKsetlogfile(env_, second), 0);
  say_everywhere("2");
  EXPECT_EQ(TVKgetlogfile(env_, &set), 0);
  EXPECT_EQ(set, second);
  errors();
  ASSERT_EQ(TVKsetlogfile(env_, nullptr), 0);
  say_everywhere("3");
  EXPECT_EQ(TVKgetlogfile(env_, &set), 0);
  EXPECT_EQ(set, nullptr);
  EXPECT_EQ(errors(), "3");
  EXPECT_EQ(contents(first), "1111");
  EXPECT_EQ(contents(second), "2222");
  std::fclose(first);
  std::fclose(second);
}

TEST_F(Channels, ADeletedStandardChannelStaysSilent) {
  ChannelHandle error = error_;
  ASSERT_EQ(TVKdelchannel(env_, &error), 0);
  EXPECT_EQ(TVKgetprobtype(env_, nullptr), -1);
  EXPECT_EQ(TVKgetchannels(env_, nullptr, nullptr, &error, nullptr), 0);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(TVKflushstdchannels(env_), 0);
  EXPECT_EQ(TVKsetlogfile(env_, stdout), 0);
  EXPECT_EQ(TVKsetlogfile(env_, nullptr), 0);
}

}  // namespace
