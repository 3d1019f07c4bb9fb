#include "param/environments.h"

#include <algorithm>
#include <utility>

#include "include/tovik.h"
#include "param/hidden.h"
#include "param/registry.h"

namespace tovik::param {
namespace {

int free_thread_number(const Environment& parent) {
  int number = 1;
  const auto taken = [&](const auto& child) { return child->thread_number == number; };
  while (std::any_of(parent.children.begin(), parent.children.end(), taken)) ++number;
  return number;
}

}  // namespace

Status open_environment(std::unique_ptr<Environment>& opened) {
  auto env = std::make_unique<Environment>();
  if (Status status = install(*env); !status.ok()) return status;
  env->ready = true;
  opened = std::move(env);
  return 0;
}

Status open_clone(Environment& master, std::unique_ptr<Environment>& opened) {
  auto clone = std::make_unique<Environment>();
  if (Status status = install(*clone); !status.ok()) return status;
  clone->settings = master.settings;
  clone->callbacks = master.callbacks;
  clone->binding_handle = master.binding_handle;
  /* It counts for itself, from where the master stands, so that tick deadlines compare and no two threads write one
   * counter. */
  clone->own_work = *master.work;
  clone->ready = true;
  opened = std::move(clone);
  return 0;
}

Status open_child(Environment& parent, Environment*& opened) {
  if (parent.parent != nullptr) return TVK_ERROR_CHILD_OF_CHILD;
  if (parent.children.size() >= static_cast<std::size_t>(thread_limit())) return TVK_ERROR_THREAD_LIMIT;
  std::unique_ptr<Environment> child;
  if (Status status = open_clone(parent, child); !status.ok()) return status;
  child->parent = &parent;
  child->thread_number = free_thread_number(parent);
  opened = child.get();
  parent.children.push_back(std::move(child));
  return 0;
}

}  // namespace tovik::param
