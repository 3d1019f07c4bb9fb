/* The table of the cut families. A new one: its file with a class of Plugin, and its line in separators.cpp. */
#pragma once

#include <memory>
#include <vector>

#include "mip/worker/global.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

struct SeparatorEntry {
  Effort effort;
  std::unique_ptr<Plugin> plugin;
};

/* Those that the settings allow, in the order in which they are called: cheap ones first. */
std::vector<SeparatorEntry> make_separators(const Global& global);

}  // namespace tovik::mip
