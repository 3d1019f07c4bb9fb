#include "fileio/dispatch/write_problem.h"

#include "env/problem.h"
#include "fileio/record/channel_log.h"
#include "fileio/record/model_writer.h"
#include "fileio/sav/saved_problem.h"
#include "fileio/stream/stream.h"
#include "fileio/stream/write_file.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kLongestType = 3;

/* What stands behind the last point; empty without one. */
std::string_view extension_of(std::string_view name) {
  const std::size_t point = name.rfind('.');
  return point == std::string_view::npos ? std::string_view() : name.substr(point + 1);
}

}  // namespace

WriteFormat write_format_of_type(std::string_view type) {
  if (type.size() > kLongestType) return WriteFormat::unknown;
  if (starts_with_keyword(type, "MPS")) return WriteFormat::mps;
  if (starts_with_keyword(type, "RMP") || starts_with_keyword(type, "REW")) return WriteFormat::generic_mps;
  if (starts_with_keyword(type, "LP")) return WriteFormat::lp;
  if (starts_with_keyword(type, "RLP")) return WriteFormat::generic_lp;
  if (starts_with_keyword(type, "SAV")) return WriteFormat::sav;
  return WriteFormat::unknown;
}

WriteFormat write_format_of_name(std::string_view name) {
  if (compression_of(name) != Compression::none) name = name.substr(0, name.rfind('.'));
  return write_format_of_type(extension_of(name));
}

Status write_problem(Environment& env, const Problem& problem, const char* name, WriteFormat format) {
  if (name == nullptr || name[0] == '\0') return TVK_ERROR_NO_FILE_NAME;
  if (format == WriteFormat::unknown) return TVK_ERROR_FILE_TYPE;
  if (format == WriteFormat::sav) return write_saved_problem(env, problem, name);
  const model::Model& model = *problem.model;
  env.add_work(static_cast<std::uint64_t>(model.num_nonzeros()) +
               static_cast<std::uint64_t>(model.num_rows() + model.num_columns()));
  const WriteSource source{model, problem.name};
  WriteOptions options;
  options.generic_names = format == WriteFormat::generic_lp || format == WriteFormat::generic_mps;
  options.long_numbers = env.settings.integer(TVK_PARAM_MPSLONGNUM) != 0;
  const bool mps = format == WriteFormat::mps || format == WriteFormat::generic_mps;
  ChannelLog log(env);
  return write_file(env, name, [&](TextWriter& out) {
    return mps ? write_mps(source, options, log, out) : write_lp(source, options, log, out);
  });
}

Status write_problem(Environment& env, const Problem& problem, const char* name, const char* type) {
  if (name == nullptr || name[0] == '\0') return TVK_ERROR_NO_FILE_NAME;
  return write_problem(env, problem, name,
                       type != nullptr ? write_format_of_type(type) : write_format_of_name(name));
}

}  // namespace tovik::fileio
