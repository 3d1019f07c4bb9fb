#include "fileio/xml/filter_file.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "fileio/record/channel_log.h"
#include "fileio/stream/write_file.h"
#include "fileio/xml/xml_reader.h"
#include "fileio/xml/xml_writer.h"
#include "include/tovik.h"
#include "model/routines/pool_filters.h"
#include "model/store/problem_type.h"

namespace tovik::fileio {
namespace {

using Kind = SolutionFilter::Kind;

constexpr const char* kRoot = "TOVIKFilters";
constexpr const char* kVersion = "1.0";

const char* element_of(Kind kind) {
  return kind == Kind::diversity ? "diversityFilter" : "rangeFilter";
}

bool is_latin1(const WriteSource& source, std::span<const SolutionFilter> filters) {
  const auto is = [](std::string_view name) { return xml_text(name) == XmlText::latin1; };
  const model::NameTable& columns = source.model.column_names();
  const auto of_column = [&](int j) { return is(columns.name(j)); };
  return is(source.name) || std::any_of(filters.begin(), filters.end(), [&](const SolutionFilter& filter) {
           return is(filter.name) ||
                  (!columns.empty() && std::any_of(filter.column.begin(), filter.column.end(), of_column));
         });
}

void write_entry(XmlWriter& xml, const model::NameTable& names, const SolutionFilter& filter, std::size_t k) {
  const int j = filter.column[k];
  xml.begin("variable");
  if (!names.empty() && xml_text(names.name(j)) != XmlText::impossible) xml.attribute("name", names.name(j));
  xml.attribute("index", j);
  if (filter.kind == Kind::diversity) {
    xml.attribute("weight", filter.coefficient[k]);
    xml.attribute("value", filter.reference[k]);
  } else {
    xml.attribute("coefficient", filter.coefficient[k]);
  }
  xml.end();
}

class FilterReader : public XmlReader {
 public:
  FilterReader(const model::Model& model, ReaderLog& log, std::vector<SolutionFilter>& filters)
      : XmlReader(log), model_(model), filters_(filters) {}

  bool has_root() const { return has_root_; }

 private:
  void start(std::string_view name, const XML_Char** attributes) override {
    has_root_ = has_root_ || name == kRoot;
    if (!has_root_) return;
    if (name == element_of(Kind::diversity)) return begin_filter(Kind::diversity, attributes);
    if (name == element_of(Kind::range)) return begin_filter(Kind::range, attributes);
    if (name == "variable" && in_filter_) entry(attributes);
  }
  void end(std::string_view name) override {
    if (name == element_of(Kind::diversity) || name == element_of(Kind::range)) in_filter_ = false;
  }

  void begin_filter(Kind kind, const XML_Char** attributes) {
    in_filter_ = true;
    SolutionFilter filter{kind, -TVK_INFBOUND, TVK_INFBOUND, {}, {}, {}, {}};
    for (; *attributes != nullptr; attributes += 2) {
      const std::string_view key = attributes[0];
      if (key == "name") filter.name = text(attributes[1]);
      if (key == "lowerBound") filter.lower = number(attributes[1], 0);
      if (key == "upperBound") filter.upper = number(attributes[1], 0);
    }
    count(kOfEach);
    filters_.push_back(std::move(filter));
  }
  void entry(const XML_Char** attributes) {
    Identity column;
    const char *coefficient = nullptr, *value = nullptr;
    SolutionFilter& filter = filters_.back();
    const bool is_diversity = filter.kind == Kind::diversity;
    for (; *attributes != nullptr; attributes += 2) {
      const std::string_view key = attributes[0];
      if (key == "name") column.name = attributes[1];
      if (key == "index") column.index = attributes[1];
      if (key == (is_diversity ? "weight" : "coefficient")) coefficient = attributes[1];
      if (key == "value") value = attributes[1];
    }
    const int j = resolve(column, model_.column_names(), model_.num_columns(), true);
    if (j < 0) return;
    count(1);
    filter.column.push_back(j);
    filter.coefficient.push_back(number(coefficient, 1));
    if (is_diversity) filter.reference.push_back(number(value, 0));
  }
  void count(std::int64_t entries) {
    entries_ += entries;
    if (entries_ > kMaxEntries) failure_ = ReadFailure::plain(TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
  }

  static constexpr std::int64_t kOfEach = 32;  // a filter without its entries

  const model::Model& model_;
  std::vector<SolutionFilter>& filters_;
  bool has_root_ = false, in_filter_ = false;
  std::int64_t entries_ = 0;
};

}  // namespace

int write_filters(const WriteSource& source, std::span<const SolutionFilter> filters, TextWriter& out) {
  XmlWriter xml(out, is_latin1(source, filters));
  xml.use_all_digits();
  xml.open_with_version(kRoot, kVersion);
  xml.begin("header");
  xml.attribute("problemName", title(source.name));
  xml.end();
  for (const SolutionFilter& filter : filters) {
    xml.begin_container(element_of(filter.kind));
    xml.attribute("name", filter.name);
    if (filter.lower > -TVK_INFBOUND) xml.attribute("lowerBound", filter.lower);
    if (filter.upper < TVK_INFBOUND) xml.attribute("upperBound", filter.upper);
    xml.end_of_attributes();
    for (std::size_t k = 0; k < filter.column.size(); ++k)
      write_entry(xml, source.model.column_names(), filter, k);
    xml.close(element_of(filter.kind));
  }
  xml.close(kRoot);
  return xml.finite() ? 0 : TVK_ERROR_NUMBER_NOT_REPRESENTABLE;
}

ReadFailure read_filters(ByteSource& source, const model::Model& model, ReaderLog& log,
                         std::vector<SolutionFilter>& filters) {
  FilterReader reader(model, log, filters);
  const ReadFailure failure = reader.run(source);
  if (failure || reader.has_root()) return failure;
  return ReadFailure::at(TVK_ERROR_XML_PARSE, 1, "no element TOVIKFilters");
}

Status write_filter_file(Environment& env, const Problem& problem, const char* name) {
  return write_file(env, name, [&](TextWriter& out) {
    return write_filters({*problem.model, problem.name}, problem.filters.all(), out);
  });
}

Status read_filter_file(Environment& env, Problem& problem, const char* name) {
  if (!model::is_mixed_integer(problem.type)) return TVK_ERROR_NOT_MIP;
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, {name, ".flt"}, source); !status.ok()) return status;
  std::vector<SolutionFilter> filters;
  ChannelLog log(env);
  const ReadFailure failure = read_filters(*source, *problem.model, log, filters);
  if (const Status s = close_source(env, *source, bool(failure), name); !s.ok()) return s;
  return failure ? report_failure(env, failure) : model::add_filters(env, problem, std::move(filters));
}

}  // namespace tovik::fileio
