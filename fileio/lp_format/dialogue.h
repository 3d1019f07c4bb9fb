/* Entry of an LP model by a person: the LP reader on lines that are asked for again when they are wrong.
 *
 * The text typed so far is kept. After an error the line that it names is replaced by a new one and the
 * reading begins anew from the first line, silently up to the new line, so nothing of the wrong line stays in
 * the model. Lines behind the replaced one (an error can come to light later than on its line, when a row
 * goes over lines) are read again as they are. Time: one pass over the text for each error. */
#pragma once

#include <cstdio>

#include "fileio/record/model_reader.h"

namespace tovik::fileio {

/* The other side of the dialogue. */
class DialogueLog : public ReaderLog {
 public:
  virtual void prompt(std::string_view text) = 0;  // to be seen before the next line is read
  virtual void failure(const ReadFailure& failure) = 0;
};

/* Reads up to the line "end" and no byte further, so that what follows on `input` is left to the caller. At
 * the end of the input the model is complete as in a file without End, unless a line is still asked for.
 * False: no model; the last failure that the log was given tells why. An "end" before any objective is not
 * asked for again. */
bool read_lp_dialogue(std::FILE* input, ReadOptions options, DialogueLog& log, FileModel& model);

}  // namespace tovik::fileio
