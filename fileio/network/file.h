/* Network files: the DIMACS format for minimum-cost flow problems.
 *
 *   c comment
 *   p min NODES ARCS        once, before all other records
 *   n NODE SUPPLY           nodes from 1; a node without a record has the supply 0
 *   a TAIL HEAD LOWER UPPER COST
 *
 * Reading is more generous than the format: numbers may be fractions, lower bounds negative, fields apart by
 * any blanks, lines empty. "inf" (or "infinity", either case, with a sign) and numbers of 1e20 and beyond are
 * infinite bounds, and so is an upper bound of exactly "-1" on an arc whose lower bound is not negative
 * ("-1.0" is a number).
 *
 * What the format has no place for stands in comments that begin with "c @":
 *
 *   c @problem NAME
 *   c @maximize             costs are then those of the negated objective, which any reader may minimize
 *   c @node NODE NAME
 *   c @arc NAME             names the arc of the next record
 *
 * A line feed, a carriage return and a backslash in a name are written \n, \r and \\. Other comments mean
 * nothing; a note that makes no sense is a comment.
 *
 * Errors of reading:
 * - 1531 the problem line is missing, comes twice, or is not that of a minimum-cost flow problem;
 * - 1530 nodes or arcs contradict it, or a node comes twice (a warning tells the line);
 * - 1538 the file ends before its last arc;
 * - 1537 a line is not understood;
 * - 1012 more than kMaxEntries nodes or arcs. */
#pragma once

#include <string_view>

#include "env/network_problem.h"
#include "env/problem.h"
#include "fileio/record/model_reader.h"
#include "fileio/stream/output.h"
#include "model/network/network.h"

namespace tovik::fileio {

/* Memory stays in proportion to the file, whatever its problem line says. */
ReadFailure read_network(ByteSource& source, const ReadOptions& options, ReaderLog& log,
                         model::NetworkData& data);

/* 0, or 1650 for a number that is not finite. Everything but infinite bounds reads back as the same
 * number. */
int write_network(const model::Network& network, std::string_view problem_name, TextWriter& out);

/* Replaces the network by that of the file, and its name by the one in the file or else the file's own. */
Status read_network_file(Environment& env, NetworkProblem& problem, const char* name);
/* Replaces the model of `problem` by that of the network in an opened file (model/network/linear_model.h); without
 * names in the file, rows are called n1 ... and columns a1 .... The file name becomes the problem's name. */
Status read_network_problem(Environment& env, Problem& problem, ByteSource& source, const char* name);
Status write_network_file(Environment& env, const NetworkProblem& problem, const char* name);

}  // namespace tovik::fileio
