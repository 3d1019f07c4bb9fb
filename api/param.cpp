/* The exported parameter routines. */
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>

#include "env/entry.h"
#include "param/hidden.h"
#include "param/registry.h"

using namespace tovik;

namespace {

template <class Value>
void put(Value* output, Value value) {
  if (output != nullptr) *output = value;
}

bool is_listed_when_changed(const param::Entry& entry) {
  return !entry.hidden && entry.number != param::kNamesOnly;
}

struct ChangedList {
  int* numbers;
  int space;
  int stored = 0;
  int found = 0;
  void add(int number) {
    if (stored < space) numbers[stored++] = number;
    ++found;
  }
};

Status list_changed(Environment& env, ChangedList& list) {
  param::count_table_scan(env);
  for (const param::Entry& entry : param::entries()) {
    if (is_listed_when_changed(entry) && param::is_changed(env, entry)) list.add(entry.number);
  }
  if (list.found <= list.space) return {};
  return list.space == 0 ? Status::reported(TVK_ERROR_ARRAY_TOO_SHORT) : Status(TVK_ERROR_ARRAY_TOO_SHORT);
}

}  // namespace

int TVKsetintparam(EnvHandle env, int number, int value) {
  return with_environment(env, [&](Environment& e) { return param::set_integer(e, number, value); });
}

int TVKsetdblparam(EnvHandle env, int number, double value) {
  return with_environment(env, [&](Environment& e) { return param::set_real(e, number, value); });
}

int TVKsetstrparam(EnvHandle env, int number, const char* text) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (text == nullptr) return TVK_ERROR_NULL_POINTER;
    return param::set_text(e, number, text);
  });
}

int TVKgetintparam(ConstEnvHandle env, int number, int* value_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (value_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (param::locate_typed(e, number, param::Type::integer) == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    *value_p = e.settings.integer(number);
    return {};
  });
}

int TVKgetdblparam(ConstEnvHandle env, int number, double* value_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (value_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (param::locate_typed(e, number, param::Type::real) == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    *value_p = e.settings.real(number);
    return {};
  });
}

int TVKgetstrparam(ConstEnvHandle env, int number, char* buffer) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (buffer == nullptr) return TVK_ERROR_NULL_POINTER;
    if (param::locate_typed(e, number, param::Type::text) == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    std::strcpy(buffer, e.settings.text(number).c_str());
    return {};
  });
}

int TVKinfointparam(ConstEnvHandle env, int number, int* default_p, int* min_p, int* max_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    const param::Entry* entry = param::locate_typed(e, number, param::Type::integer);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    put(default_p, entry->int_default);
    put(min_p, entry->int_minimum);
    put(max_p, param::maximum(*entry));
    return {};
  });
}

int TVKinfodblparam(ConstEnvHandle env, int number, double* default_p, double* min_p, double* max_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    const param::Entry* entry = param::locate_typed(e, number, param::Type::real);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    put(default_p, entry->real_default);
    put(min_p, entry->real_minimum);
    put(max_p, entry->real_maximum);
    return {};
  });
}

int TVKinfostrparam(ConstEnvHandle env, int number, char* default_text) {
  return with_environment(env, [&](Environment& e) -> Status {
    const param::Entry* entry = param::locate_typed(e, number, param::Type::text);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    if (default_text != nullptr) std::strcpy(default_text, entry->text_default);
    return {};
  });
}

int TVKgetparamname(ConstEnvHandle env, int number, char* name) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (name == nullptr) return TVK_ERROR_NULL_POINTER;
    *name = '\0';
    const param::Entry* entry = param::locate(e, number);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    if (entry->name != nullptr) std::strcpy(name, entry->name);
    return {};
  });
}

int TVKgetparamnum(ConstEnvHandle env, const char* name, int* number_p) {
  return with_environment(env, [&](Environment&) -> Status {
    if (number_p == nullptr) return TVK_ERROR_NULL_POINTER;
    *number_p = -1;
    if (name == nullptr) return TVK_ERROR_NULL_POINTER;
    const param::Entry* entry = param::find_name(name);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NAME;
    *number_p = entry->number;
    return {};
  });
}

int TVKgetparamtype(ConstEnvHandle env, int number, int* type_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    const param::Entry* entry = param::locate(e, number);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    put(type_p, static_cast<int>(entry->type));
    return {};
  });
}

int TVKgetparamdesc(ConstEnvHandle env, int number, char* buffer) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (buffer == nullptr) return TVK_ERROR_NULL_POINTER;
    *buffer = '\0';
    const param::Entry* entry = param::locate(e, number);
    if (entry == nullptr) return TVK_ERROR_PARAMETER_NUMBER;
    if (!entry->has_effect) std::strcpy(buffer, param::kUnusedNote);
    std::strcat(buffer, entry->description);
    return {};
  });
}

int TVKgetchgparam(ConstEnvHandle env, int* count_p, int* numbers, int space, int* surplus_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (count_p == nullptr || surplus_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (numbers == nullptr && space > 0) return TVK_ERROR_NULL_POINTER;
    ChangedList list{numbers, space};
    const Status status = list_changed(e, list);
    *count_p = list.stored;
    *surplus_p = static_cast<int>(std::max<std::int64_t>(std::int64_t{space} - list.found, -INT_MAX));
    return status;
  });
}

int TVKsetdefaults(EnvHandle env) {
  return with_environment(env, [](Environment& e) {
    param::reset(e);
    return Status();
  });
}
