#include "env/channel.h"

#include <algorithm>
#include <iterator>

#include "env/text_buffer.h"
#include "include/tovik.h"

namespace tovik {
namespace {

void deliver(const Destination& destination, const char* text) noexcept {
  try {
    if (destination.kind == Destination::Kind::function) {
      destination.function(destination.handle, text);
    } else if (FILE* file = destination.current_file(); file != nullptr) {
      std::fputs(text, file);
    }
  } catch (...) {  // a message cannot fail, and nothing may unwind through the routine that sends it
  }
}

}  // namespace

Channel::Channel(const Environment& environment)
    : environment_(environment),
      list_(std::make_shared<List>()),
      live_(std::in_place, this, HandleKind::channel) {}

Channel::~Channel() {
  list_->destinations.clear();
}

void Channel::add(Destination destination) {
  destination.number = list_->next_number;
  list_->destinations.push_back(destination);
  ++list_->next_number;
}

template <class Matches>
bool Channel::remove_newest(Matches matches) {
  auto& all = list_->destinations;
  const auto found = std::find_if(all.rbegin(), all.rend(), matches);
  if (found == all.rend()) return false;
  all.erase(std::next(found).base());
  return true;
}

int Channel::add_file(FILE* file) {
  if (file == nullptr) return TVK_ERROR_NO_FILE_DESTINATION;
  add({.kind = Destination::Kind::file, .file = file});
  return 0;
}

int Channel::remove_file(FILE* file) {
  const bool found = remove_newest(
      [&](const Destination& d) { return d.kind == Destination::Kind::file && d.file == file; });
  return found ? 0 : TVK_ERROR_NO_FILE_DESTINATION;
}

int Channel::add_file_slot(FILE** slot) {
  if (slot == nullptr) return TVK_ERROR_NO_FILE_DESTINATION;
  add({.kind = Destination::Kind::file_slot, .file_slot = slot});
  return 0;
}

int Channel::add_function(void* handle, MessageFunction function) {
  if (function == nullptr) return TVK_ERROR_NO_FUNCTION_DESTINATION;
  add({.kind = Destination::Kind::function, .handle = handle, .function = function});
  return 0;
}

int Channel::remove_function(void* handle, MessageFunction function) {
  const bool found = remove_newest([&](const Destination& d) {
    return d.kind == Destination::Kind::function && d.handle == handle && d.function == function;
  });
  return found ? 0 : TVK_ERROR_NO_FUNCTION_DESTINATION;
}

void Channel::reserve() {
  auto& all = list_->destinations;
  if (all.size() == all.capacity()) all.reserve(2 * all.size() + 1);
}

bool Channel::has_file(FILE* file) const {
  const auto& all = list_->destinations;
  return std::any_of(all.begin(), all.end(), [&](const Destination& d) {
    return d.kind == Destination::Kind::file && d.file == file;
  });
}

void Channel::disconnect() noexcept {
  flush();
  list_->destinations.clear();
}

void Channel::retire() noexcept {
  disconnect();
  live_.reset();
}

void Channel::flush() noexcept {
  const auto& all = list_->destinations;
  for (auto d = all.rbegin(); d != all.rend(); ++d) {
    if (FILE* file = d->current_file(); file != nullptr) std::fflush(file);
  }
}

void Channel::write(const char* text) noexcept {
  if (list_->destinations.empty()) return;
  const std::shared_ptr<List> list = list_;  // outlives a channel that a destination function deletes
  ++list->deliveries;
  /* The list may change under each call, so the next destination is looked up by its number. */
  for (std::uint64_t bound = list->next_number;;) {
    const auto& all = list->destinations;
    const auto next =
        std::partition_point(all.begin(), all.end(), [&](const Destination& d) { return d.number < bound; });
    if (next == all.begin()) break;
    const Destination destination = *std::prev(next);
    bound = destination.number;
    deliver(destination, text);
  }
  --list->deliveries;
}

void Channel::write_to_files(const char* text) noexcept {
  const auto& all = list_->destinations;
  for (auto d = all.rbegin(); d != all.rend(); ++d) {
    if (d->kind != Destination::Kind::function) deliver(*d, text);
  }
}

bool Channel::empty() const {
  return list_->destinations.empty();
}

bool Channel::delivering() const {
  return list_->deliveries > 0;
}

int message(Channel* channel, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = message_list(channel, format, arguments);
  va_end(arguments);
  return length;
}

int message_list(Channel* channel, const char* format, std::va_list arguments) {
  TextBuffer buffer;
  buffer.append_list(format, arguments);
  if (channel != nullptr) channel->write(buffer.text());
  return buffer.length();
}

}  // namespace tovik
