/* Environments that are ready for use: with parameters, a random state and, of children, what they inherit. */
#pragma once

#include <memory>

#include "env/environment.h"

namespace tovik::param {

/* Defaults everywhere. */
Status open_environment(std::unique_ptr<Environment>& opened);

/* A child with the settings and callbacks of its parent, which owns it. 1019 for a child of a child and 1020
 * where the parent has as many as the machine has threads. */
Status open_child(Environment& parent, Environment*& opened);

/* One that its opener owns, for a thread of an optimizer: with settings and callbacks of the master and a counter of its
 * own, which begins where the master's stands. */
Status open_clone(Environment& master, std::unique_ptr<Environment>& opened);

}  // namespace tovik::param
