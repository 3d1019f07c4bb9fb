/* Files of the filters of a solution pool: XML, with columns by name and index, and as many digits as read back as the same
 * numbers. Bounds that are none are left out.
 *
 *   <TOVIKFilters version="1.0">
 *    <header problemName="p"/>
 *    <diversityFilter name="f1" lowerBound="2">
 *     <variable name="x" index="0" weight="1" value="0"/>
 *    </diversityFilter>
 *    <rangeFilter name="f2" lowerBound="-1" upperBound="4.5">
 *     <variable name="y" index="1" coefficient="2.5"/>
 *    </rangeFilter>
 *   </TOVIKFilters>
 *
 * Names are as in solution files. Weights and coefficients that are absent are 1, values 0. */
#pragma once

#include <vector>

#include "env/error.h"
#include "env/problem.h"
#include "fileio/record/model_writer.h"

namespace tovik::fileio {

int write_filters(const WriteSource& source, std::span<const SolutionFilter> filters, TextWriter& out);
/* 1425 (where there is no element TOVIKFilters, too), 1434, 1012 more entries than kMaxEntries. Columns that the model has not
 * are left out with a warning. Nothing else is checked. */
ReadFailure read_filters(ByteSource& source, const model::Model& model, ReaderLog& log,
                         std::vector<SolutionFilter>& filters);

/* 1421, 1422, 1803. */
Status write_filter_file(Environment& env, const Problem& problem, const char* name);
/* Adds the file's filters, all of them or none. 1423, those of read_filters() and of model::add_filters(). */
Status read_filter_file(Environment& env, Problem& problem, const char* name);

}  // namespace tovik::fileio
