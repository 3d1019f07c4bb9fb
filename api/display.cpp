/* Models on channels. */
#include "fileio/display/display.h"
#include "env/channels.h"
#include "env/entry.h"

using namespace tovik;
using namespace tovik::fileio;

namespace {

/* make: Status(Environment&, const Problem&, std::string&). What it makes goes to the channel in one
 * message. */
template <class Make>
int display(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, Make&& make) {
  return with_problem(env, lp, [&](Environment& environment, Problem& problem) -> Status {
    Channel* const to = find_channel(environment, channel);
    if (to == nullptr) return TVK_ERROR_NO_CHANNEL;
    std::string text;
    if (const Status status = make(environment, problem, text); !status.ok()) return status;
    to->write(text.c_str());
    return {};
  });
}

int display_kind(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, Item item,
                 const Selection& selection) {
  return display(env, lp, channel, [&](Environment& e, const Problem& p, std::string& text) {
    return display_items(e, *p.model, item, selection, text);
  });
}

}  // namespace

int TVKdisplayrows(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char* pattern,
                   int begin, int end) {
  return display_kind(env, lp, channel, Item::row, {"TVKdisplayrows", pattern, begin, end});
}

int TVKdisplayqconstrs(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char* pattern,
                       int begin, int end) {
  return display_kind(env, lp, channel, Item::quadratic_row, {"TVKdisplayqconstrs", pattern, begin, end});
}

int TVKEdisplayindconstrs(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char* pattern,
                          int begin, int end) {
  return display_kind(env, lp, channel, Item::indicator, {"TVKEdisplayindconstrs", pattern, begin, end});
}

int TVKdisplayusercuts(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char* pattern,
                       int begin, int end) {
  return display_kind(env, lp, channel, Item::user_cut, {"TVKdisplayusercuts", pattern, begin, end});
}

int TVKdisplaylazyconstraints(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel,
                              const char* pattern, int begin, int end) {
  return display_kind(env, lp, channel, Item::lazy_constraint,
                      {"TVKdisplaylazyconstraints", pattern, begin, end});
}

int TVKdisplaysos(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char* pattern,
                  int begin, int end) {
  return display_kind(env, lp, channel, Item::set, {"TVKdisplaysos", pattern, begin, end});
}

int TVKdisplaybounds(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char* pattern,
                     int begin, int end) {
  return display_kind(env, lp, channel, Item::bound, {"TVKdisplaybounds", pattern, begin, end});
}

int TVKdisplayctype(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, int ctype,
                    const char* pattern, int begin, int end) {
  return display(env, lp, channel, [&](Environment& e, const Problem& p, std::string& text) -> Status {
    if (ctype != 'C' && ctype != 'B' && ctype != 'I' && ctype != 'S' && ctype != 'N')
      return TVK_ERROR_BAD_ARGUMENT;
    return display_types(e, *p.model, static_cast<char>(ctype), {"TVKdisplayctype", pattern, begin, end},
                         text);
  });
}

int TVKdisplayobj(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel) {
  return display(env, lp, channel, [](Environment&, const Problem& p, std::string& text) -> Status {
    display_objective(*p.model, text);
    return {};
  });
}

int TVKdisplayprob(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel) {
  return display(env, lp, channel, [](Environment&, const Problem& p, std::string& text) -> Status {
    display_model(*p.model, text);
    return {};
  });
}

int TVKdisplaysummary(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel) {
  return display(env, lp, channel, [](Environment&, const Problem& p, std::string& text) -> Status {
    display_summary(p, text);
    return {};
  });
}
