/* What the ending of a file name tells. */
#include <algorithm>

#include "fileio/stream/stream.h"

namespace tovik::fileio {

bool starts_with_keyword(std::string_view text, std::string_view pattern) {
  if (text.size() < pattern.size()) return false;
  return std::equal(pattern.begin(), pattern.end(), text.begin(),
                    [](char p, char t) { return t == p || (t == p - 'A' + 'a' && p >= 'A' && p <= 'Z'); });
}

bool ends_with_keyword(std::string_view text, std::string_view pattern) {
  return text.size() >= pattern.size() &&
         starts_with_keyword(text.substr(text.size() - pattern.size()), pattern);
}

Compression compression_of(std::string_view name) {
  if (name.size() < 3) return Compression::none;
  if (name.size() > 3 && ends_with_keyword(name, ".BZ2")) return Compression::bzip2;
  if (ends_with_keyword(name, ".GZ") || name.ends_with(".Z")) return Compression::gzip;
  return Compression::none;
}

}  // namespace tovik::fileio
