#include "cli/display.h"

#include <system_error>

#include "cli/console.h"
#include "cli/input.h"

namespace tovik::cli {

namespace {

using Count = int (*)(ConstEnvHandle, ConstProbHandle);
using Display = int (*)(ConstEnvHandle, ConstProbHandle, ChannelHandle, const char*, int, int);

/* Kinds of which the model has none are passed over. */
void display_matches(const Model& model, ChannelHandle channel, const char* pattern) {
  const Environment& environment = model.environment();
  const EnvHandle env = environment.handle();
  const std::pair<Count, Display> kinds[] = {{TVKgetnumrows, TVKdisplayrows},
                                             {TVKgetnumqconstrs, TVKdisplayqconstrs},
                                             {TVKEgetnumindconstrs, TVKEdisplayindconstrs},
                                             {TVKgetnumusercuts, TVKdisplayusercuts},
                                             {TVKgetnumlazyconstraints, TVKdisplaylazyconstraints},
                                             {TVKgetnumsos, TVKdisplaysos},
                                             {TVKgetnumcols, TVKdisplaybounds}};
  for (const auto& [count, display] : kinds) {
    const int items = count(env, model.handle());
    if (items > 0) environment.check(display(env, model.handle(), channel, pattern, 0, items - 1));
  }
}

}  // namespace

ExitStatus display_model(const Environment& environment, const Options& options) {
  Console console(environment, stdout, Verbosity::none);
  const std::string& file = options.models.front();
  try {
    const Model model(environment, file);
    console.set_label(file == "-" ? "standard input" : file);
    read_model_file(model, file);
    console.set_label("");
    const ChannelHandle channel = TVKaddchannel(environment.handle());
    if (channel == nullptr) return ExitStatus::out_of_memory;
    environment.check(TVKaddfpdest(environment.handle(), channel, stdout));
    if (options.models.size() > 1) {
      display_matches(model, channel, options.models[1].c_str());
    } else {
      environment.check(TVKdisplaysummary(environment.handle(), model.handle(), channel));
    }
    return ExitStatus::solved;
  } catch (const LibraryError& error) {
    return exit_status_of_read_error(error.code);
  } catch (const std::system_error& error) {
    console.print_error(error.what());
    return ExitStatus::bad_input;
  }
}

}  // namespace tovik::cli
