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

Status open_child(Environment& parent, Environment*& opened) {
  if (parent.parent != nullptr) return TVK_ERROR_CHILD_OF_CHILD;
  if (parent.children.size() >= static_cast<std::size_t>(thread_limit())) return TVK_ERROR_THREAD_LIMIT;
  auto child = std::make_unique<Environment>();
  if (Status status = install(*child); !status.ok()) return status;
  child->settings = parent.settings;
  child->callbacks = parent.callbacks;
  child->binding_handle = parent.binding_handle;
  child->parent = &parent;
  child->thread_number = free_thread_number(parent);
  /* The child counts for itself, from where the parent stands, so that tick deadlines compare and no two
   * threads write one counter. */
  child->own_work = *parent.work;
  child->ready = true;
  opened = child.get();
  parent.children.push_back(std::move(child));
  return 0;
}

}  // namespace tovik::param
