/* Current values of all parameters of one environment, addressed by parameter number. The table of names,
 * types, defaults and ranges lives in param/; this block only holds values, so that every folder can read a
 * setting and a child environment can copy them as one block. Reading an unregistered number gives 0 or an
 * empty text. */
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace tovik {

class Settings {
 public:
  static constexpr int kFirst = 1001;
  static constexpr int kLast = 5999;
  int integer(int number) const { return integers_[slot(number)]; }
  double real(int number) const { return reals_[slot(number)]; }
  const std::string& text(int number) const;
  void set_integer(int number, int value) { integers_[slot(number)] = value; }
  void set_real(int number, double value) { reals_[slot(number)] = value; }
  void set_text(int number, const char* value) { texts_[number] = value; }

 private:
  static constexpr std::size_t kSlots = static_cast<std::size_t>(kLast - kFirst + 1);
  static std::size_t slot(int number) { return static_cast<std::size_t>(number - kFirst); }
  std::vector<int> integers_ = std::vector<int>(kSlots, 0);
  std::vector<double> reals_ = std::vector<double>(kSlots, 0.0);
  std::unordered_map<int, std::string> texts_;
};

}  // namespace tovik
