/* Message channels: destinations, messages, the log file. */
#include <cstdarg>
#include <memory>

#include "env/channels.h"
#include "env/entry.h"
#include "env/handles.h"

using namespace tovik;

namespace {

/* worker: Status(Channel&) */
template <class Worker>
int with_channel(ConstEnvHandle env, ChannelHandle handle, Worker&& worker,
                 CallbackContext context = CallbackContext::refused) {
  return with_environment(
      env,
      [&](Environment& e) -> Status {
        Channel* channel = find_channel(e, handle);
        return channel != nullptr ? worker(*channel) : TVK_ERROR_NO_CHANNEL;
      },
      context);
}

}  // namespace

ChannelHandle TVKaddchannel(EnvHandle env) {
  Channel* channel = nullptr;
  with_environment(env, [&](Environment& e) -> Status {
    e.channels.push_back(std::make_unique<Channel>(e));
    channel = e.channels.back().get();
    return 0;
  });
  return to_handle(channel);
}

int TVKdelchannel(EnvHandle env, ChannelHandle* channel_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (channel_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (const Status status = delete_channel(e, from_handle(*channel_p)); !status.ok()) return status;
    *channel_p = nullptr;
    return 0;
  });
}

int TVKdisconnectchannel(EnvHandle env, ChannelHandle channel) {
  return with_channel(env, channel, [](Channel& c) -> Status {
    c.disconnect();
    return 0;
  });
}

int TVKflushchannel(ConstEnvHandle env, ChannelHandle channel) {
  const auto flush = [](Channel& c) -> Status {
    c.flush();
    return 0;
  };
  return with_channel(env, channel, flush, CallbackContext::allowed);
}

int TVKaddfpdest(ConstEnvHandle env, ChannelHandle channel, FILE* fp) {
  return with_channel(env, channel, [&](Channel& c) -> Status { return c.add_file(fp); });
}

int TVKdelfpdest(ConstEnvHandle env, ChannelHandle channel, FILE* fp) {
  return with_channel(env, channel, [&](Channel& c) -> Status { return c.remove_file(fp); });
}

int TVKaddfuncdest(ConstEnvHandle env, ChannelHandle channel, void* handle,
                   void (*msgfunction)(void*, const char*)) {
  return with_channel(env, channel,
                      [&](Channel& c) -> Status { return c.add_function(handle, msgfunction); });
}

int TVKdelfuncdest(ConstEnvHandle env, ChannelHandle channel, void* handle,
                   void (*msgfunction)(void*, const char*)) {
  return with_channel(env, channel,
                      [&](Channel& c) -> Status { return c.remove_function(handle, msgfunction); });
}

int TVKmsg(ChannelHandle channel, const char* format, ...) {
  if (format == nullptr) return 0;
  std::va_list arguments;
  va_start(arguments, format);
  const int length = message_list(from_handle(channel), format, arguments);
  va_end(arguments);
  return length;
}

int TVKmsgstr(ChannelHandle channel, const char* text) {
  return text != nullptr ? message(from_handle(channel), "%s", text) : 0;
}

int TVKgetchannels(ConstEnvHandle env, ChannelHandle* results_p, ChannelHandle* warning_p,
                   ChannelHandle* error_p, ChannelHandle* log_p) {
  const auto store = [&](Environment& e) -> Status {
    if (results_p != nullptr) *results_p = to_handle(e.results_channel);
    if (warning_p != nullptr) *warning_p = to_handle(e.warning_channel);
    if (error_p != nullptr) *error_p = to_handle(e.error_channel);
    if (log_p != nullptr) *log_p = to_handle(e.log_channel);
    return 0;
  };
  return with_environment(env, store, CallbackContext::allowed);
}

int TVKflushstdchannels(ConstEnvHandle env) {
  const auto flush = [](Environment& e) -> Status {
    for (Channel* channel : {e.results_channel, e.log_channel, e.error_channel, e.warning_channel}) {
      if (channel != nullptr) channel->flush();
    }
    return 0;
  };
  return with_environment(env, flush, CallbackContext::allowed);
}

int TVKsetlogfile(EnvHandle env, FILE* fp) {
  return with_environment(env, [&](Environment& e) -> Status {
    set_log_file(e, fp);
    return 0;
  });
}

int TVKgetlogfile(ConstEnvHandle env, FILE** fp_p) {
  const auto store = [&](Environment& e) -> Status {
    if (fp_p == nullptr) return TVK_ERROR_NULL_POINTER;
    *fp_p = e.log_file;
    return 0;
  };
  return with_environment(env, store, CallbackContext::allowed);
}
