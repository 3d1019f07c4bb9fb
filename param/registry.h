/* The parameter table and what may be done with it: every entry's type, name, default and range, in five
 * blocks of contiguous numbers. The table is constant data shared by all environments; the current values
 * live in Environment::settings and are read there as plain fields. The exported routines and the parameter
 * file stand on the operations below; none of them reports, all of them count their look-ups as work.
 *
 * - Errors: 1013 no such parameter of the wanted type; 1014, 1015 out of range; 1026 text too long; 1807
 *   polishing conditions that exclude each other. A failed set changes nothing. */
#pragma once

#include <span>
#include <string_view>

#include "env/environment.h"
#include "env/error.h"

namespace tovik::param {

enum class Type : int { none = 0, integer = 1, real = 2, text = 3 };

/* Upper bounds of integer entries that depend on the machine. */
enum class Ceiling { constant, threads, threads_less_one };

struct Entry {
  int number = -1;
  Type type = Type::none;
  const char* name = nullptr;  // "" for a hidden entry, null for an unregistered number
  bool hidden = true;
  int int_default = 0, int_minimum = 0, int_maximum = 0;
  double real_default = 0, real_minimum = 0, real_maximum = 0;  // minimum = maximum: no range check
  const char* text_default = nullptr;
  Ceiling ceiling = Ceiling::constant;
  const char* description = "";  // "" for a hidden entry
  bool has_effect = true;        // false: stored only, nothing reads it yet
  constexpr bool registered() const { return type != Type::none; }
};

/* Sets every parameter of a new environment to its default; the last step of building its settings. */
Status install(Environment& env);

/* Resets every parameter, hidden ones too, and detaches standard output. Echoes nothing. */
void reset(Environment& env);

/* All registered entries in ascending number. */
std::span<const Entry> entries();

/* Begins the description of a parameter that is only stored. */
inline constexpr char kUnusedNote[] = "Stored, without effect in this version. ";

/* Adds the work of one pass over all blocks. */
void count_table_scan(Environment& env);

/* The entry of a number; one with type none for an unregistered number of a block; null outside of all
 * blocks. */
const Entry* locate(Environment& env, int number);

/* The entry of a number between 1001 and 5999 if it has this type, else null. */
const Entry* locate_typed(Environment& env, int number, Type type);

/* The named entry of exactly this text, or null. */
const Entry* find_name(std::string_view name);

/* Checks without setting, in the order of the setters. */
Status check_integer(Environment& env, int number, int value);
Status check_real(Environment& env, int number, double value);
Status check_text(Environment& env, int number, std::string_view value);

/* Check, store, side effects, echo. */
Status set_integer(Environment& env, int number, int value);
Status set_real(Environment& env, int number, double value);
Status set_text(Environment& env, int number, const char* value);

/* Whether the current value differs from the default; a value that is not a number always does. */
bool is_changed(const Environment& env, const Entry& entry);

/* Largest value of an integer entry on this machine. */
int maximum(const Entry& entry);

}  // namespace tovik::param
