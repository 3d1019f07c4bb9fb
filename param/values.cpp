/* Checking, storing and resetting current values, with the few parameters that act when they change. */
#include <array>
#include <cstdint>
#include <cstdio>

#include "env/channel.h"
#include "env/entry.h"
#include "param/hidden.h"
#include "param/registry.h"
#include "param/screen.h"

namespace tovik::param {

namespace {

/* A polish-after condition counts as chosen below a tenth of its "never" value, ... */
bool polishes_after_condition(const Settings& s) {
  constexpr int kChosenCount = 210000000;
  constexpr double kChosenTime = 1e74;
  return s.real(TVK_PARAM_POLISHAFTEREPAGAP) != 0 || s.real(TVK_PARAM_POLISHAFTEREPGAP) != 0 ||
         s.integer(TVK_PARAM_POLISHAFTERNODE) < kChosenCount ||
         s.integer(TVK_PARAM_POLISHAFTERINTSOL) < kChosenCount ||
         s.real(TVK_PARAM_POLISHAFTERTIME) < kChosenTime;
}

/* ... but while polishing has a time of its own, no condition may move from "never" at all. */
bool polishing_conflict(const Settings& s, int number, double value) {
  constexpr double kNeverCount = 2.1e9;
  constexpr double kNeverTime = 1e75;
  switch (number) {
    case TVK_PARAM_POLISHTIME:
      return value > 0 && polishes_after_condition(s);
    case TVK_PARAM_POLISHAFTEREPAGAP:
    case TVK_PARAM_POLISHAFTEREPGAP:
      return s.real(TVK_PARAM_POLISHTIME) > 0 && value > 0;
    case TVK_PARAM_POLISHAFTERNODE:
    case TVK_PARAM_POLISHAFTERINTSOL:
      return s.real(TVK_PARAM_POLISHTIME) > 0 && value < kNeverCount;
    case TVK_PARAM_POLISHAFTERTIME:
      return s.real(TVK_PARAM_POLISHTIME) > 0 && value < kNeverTime;
    default:
      return false;
  }
}

void detach_screen(Environment& env) {
  for (Channel* channel : screen_channels(env)) {
    if (channel != nullptr && channel->has_file(stdout)) channel->remove_file(stdout);
  }
}

/* All three channels or, when memory runs out, none more than before. */
void attach_screen(Environment& env) {
  std::array<Channel*, 3> added{};
  size_t count = 0;
  try {
    for (Channel* channel : screen_channels(env)) {
      if (channel == nullptr || channel->has_file(stdout)) continue;
      channel->add_file(stdout);
      added[count++] = channel;
    }
  } catch (...) {
    while (count > 0) added[--count]->remove_file(stdout);
    throw;
  }
}

Status check_bounds(const Entry& entry, double value) {
  if (entry.real_minimum == entry.real_maximum) return {};
  if (entry.real_minimum > value) return TVK_ERROR_PARAMETER_TOO_SMALL;
  if (entry.real_maximum < value) return TVK_ERROR_PARAMETER_TOO_BIG;
  return {};
}

/* Texts come first: they alone can run out of memory, and then nothing has changed. */
void restore_defaults(Environment& env) {
  count_table_scan(env);
  for (const Entry& entry : entries()) {
    if (entry.type == Type::text) env.settings.set_text(entry.number, entry.text_default);
  }
  for (const Entry& entry : entries()) {
    if (entry.type == Type::integer) env.settings.set_integer(entry.number, entry.int_default);
    if (entry.type == Type::real) env.settings.set_real(entry.number, entry.real_default);
  }
}

bool echoes(const Environment& env) {
  return env.settings.integer(kEcho) == 1;
}

}  // namespace

const Entry* locate_typed(Environment& env, int number, Type type) {
  if (number < Settings::kFirst || number > Settings::kLast) return nullptr;
  const Entry* entry = locate(env, number);
  return entry != nullptr && entry->type == type ? entry : nullptr;
}

Status check_integer(Environment& env, int number, int value) {
  const Entry* entry = locate_typed(env, number, Type::integer);
  if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
  if (value < entry->int_minimum) return TVK_ERROR_PARAMETER_TOO_SMALL;
  if (value > maximum(*entry)) return TVK_ERROR_PARAMETER_TOO_BIG;
  if (polishing_conflict(env.settings, number, value)) return TVK_ERROR_INCOMPATIBLE_PARAMETERS;
  return {};
}

/* Unlike integers, the excluded combination comes before the range. */
Status check_real(Environment& env, int number, double value) {
  const Entry* entry = locate_typed(env, number, Type::real);
  if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
  if (polishing_conflict(env.settings, number, value)) return TVK_ERROR_INCOMPATIBLE_PARAMETERS;
  return check_bounds(*entry, value);
}

Status check_text(Environment& env, int number, std::string_view value) {
  if (locate_typed(env, number, Type::text) == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
  if (value.size() >= TVK_STR_PARAM_MAX) return TVK_ERROR_STRING_TOO_LONG;
  return {};
}

Status set_integer(Environment& env, int number, int value) {
  if (Status status = check_integer(env, number, value); !status.ok()) return status;
  if (number == TVK_PARAM_SCRIND) value == 0 ? detach_screen(env) : attach_screen(env);
  env.settings.set_integer(number, value);
  if (echoes(env)) message(env.results_channel, "Parameter %d set to %d.\n", number, value);
  return {};
}

Status set_real(Environment& env, int number, double value) {
  if (Status status = check_real(env, number, value); !status.ok()) return status;
  env.settings.set_real(number, value);
  if (echoes(env)) message(env.results_channel, "Parameter %d set to %g.\n", number, value);
  return {};
}

Status set_text(Environment& env, int number, const char* value) {
  if (Status status = check_text(env, number, value); !status.ok()) return status;
  env.settings.set_text(number, value);
  if (echoes(env)) message(env.results_channel, "Parameter %d set to \"%s\".\n", number, value);
  return {};
}

void reset(Environment& env) {
  restore_defaults(env);
  detach_screen(env);
}

Status install(Environment& env) {
  return guarded([&] {
    restore_defaults(env);
    return Status();
  });
}

bool is_changed(const Environment& env, const Entry& entry) {
  const Settings& s = env.settings;
  switch (entry.type) {
    case Type::none:
      return false;
    case Type::integer:
      return s.integer(entry.number) != entry.int_default;
    case Type::real:
      return s.real(entry.number) != entry.real_default;
    case Type::text:
      return s.text(entry.number) != entry.text_default;
  }
  return false;
}

}  // namespace tovik::param
