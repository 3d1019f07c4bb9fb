#include "fileio/params/file.h"

#include <string>
#include <string_view>

#include "env/environment.h"
#include "fileio/stream/number_text.h"
#include "fileio/stream/write_file.h"
#include "include/tovik.h"
#include "param/hidden.h"
#include "param/registry.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kNameWidth = 32, kNumberWidth = 23;

void write_padded(TextWriter& out, std::string_view text, std::size_t width) {
  out.put(text);
  for (std::size_t k = text.size(); k < width; ++k) out.put(' ');
}

void write_name(TextWriter& out, const param::Entry& entry) {
  const bool named = entry.name[0] != '\0';
  write_padded(out, named ? std::string(entry.name) : std::to_string(entry.number), kNameWidth);
  out.put(' ');
}

/* Whether a reader would find this text again. */
bool is_writable(std::string_view text) {
  return !text.empty() && text.find_first_of("\"\n") == std::string_view::npos;
}

void write_entry(TextWriter& out, Environment& env, const param::Entry& entry) {
  char number[kNumberText];
  switch (entry.type) {
    case param::Type::integer:
      write_name(out, entry);
      out.put(std::to_string(env.settings.integer(entry.number)));
      break;
    case param::Type::real: {
      write_name(out, entry);
      const char* end = write_exponent(number, env.settings.real(entry.number), 14);
      write_padded(out, {number, static_cast<std::size_t>(end - number)}, kNumberWidth);
      break;
    }
    case param::Type::text: {
      const std::string& text = env.settings.text(entry.number);
      if (!is_writable(text)) {
        message(env.warning_channel, "Warning:  The value of parameter %d cannot stand in a file.\n",
                entry.number);
        return;
      }
      write_name(out, entry);
      out.put('"' + text + '"');
      break;
    }
    case param::Type::none:
      return;
  }
  out.put('\n');
}

bool is_omitted(const param::Entry& entry, Omitted omitted) {
  if (entry.number == param::kNamesOnly) return true;
  return omitted == Omitted::screen_and_callback_form &&
         (entry.number == TVK_PARAM_SCRIND || entry.number == TVK_PARAM_MIPCBREDLP);
}

}  // namespace

Status write_parameter_file(Environment& env, const char* name, Omitted omitted) {
  return write_file(env, name, [&](TextWriter& out) {
    out.print("TOVIK Parameter File Version %s\n", kVersion);
    param::count_table_scan(env);
    for (const param::Entry& entry : param::entries()) {
      if (param::is_changed(env, entry) && !is_omitted(entry, omitted)) write_entry(out, env, entry);
    }
    return 0;
  });
}

}  // namespace tovik::fileio
