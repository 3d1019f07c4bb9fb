/* How the program `tovik` is called: options, settings and parameter files, help, wrong usage, and what is installed
 * beside it. */
#include <algorithm>
#include <sstream>

#include "support/program_fixture.h"

namespace {

namespace fs = std::filesystem;
using support::contains;
using support::contents;
using support::Json;
using support::Program;
using support::Result;
using support::Words;

const char kOptimal[] =
    "Maximize\n profit: 3 x + 2 y\nSubject To\n time: x + y <= 4\n metal: x + 3 y <= 6\nBounds\n 0 <= x <= "
    "3\nEnd\n";  // x 3, y 1: 11

TEST_F(Program, LineOfTheOverrideFileLeavesJsonAlone) {
  write("model.lp", kOptimal);
  write("over.prm", "TOVIK Parameter File Version 12.2.0.0\nTVK_PARAM_TILIM 50\n");
  setenv("MERU_TOVIK_PARAMETER_FILE", "over.prm", 1);
  const Result json = run({"model.lp", "--json", "-q"}), text = run({"model.lp", "-q"});
  unsetenv("MERU_TOVIK_PARAMETER_FILE");
  EXPECT_EQ(json.json()["status"], 1) << json.out;
  EXPECT_TRUE(contains(json.err, "over.prm")) << json.err;
  EXPECT_TRUE(contains(text.out, "over.prm")) << text.out;
}

TEST_F(Program, ErrorsOfParameterFilesTellLineAndName) {
  write("model.lp", kOptimal);
  for (const char* setting : {"TVK_PARAM_NOSUCH 4", "TVK_PARAM_TILIM -4", "TVK_PARAM_ADVIND 99"}) {
    write("p.prm",
          std::string("TOVIK Parameter File Version 12.2.0.0\nTVK_PARAM_ITLIM 5\n") + setting + "\n");
    const Result result = run({"model.lp", "--params", "p.prm"});
    EXPECT_EQ(result.exit, 7);
    const std::string name(setting, std::string_view(setting).find(' '));
    EXPECT_TRUE(contains(result.err, "line 3: '" + name + "'")) << result.err;
  }
}

TEST_F(Program, HelpKnowsVerbsAndNearNames) {
  EXPECT_EQ(run({"help", "check"}).out, run({"check", "--help"}).out);
  EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
  EXPECT_EQ(run({"help", "help"}).out, run({"--help"}).out);
  EXPECT_FALSE(contains(run({"help", "convert"}).out, "--time-limit"));
  const struct {
    Words words;
    const char* near;
  } slips[] = {{{"help", "chek"}, "check"},
               {{"verfiy", "m.lp", "m.sol"}, "tovik verify"},
               {{"m.lp", "--threds", "2"}, "--threads"},
               {{"check", "m.lp", "--strct"}, "--strict"}};
  for (const auto& slip : slips) {
    const Result result = run(slip.words);
    EXPECT_EQ(result.exit, 2) << slip.near;
    EXPECT_TRUE(contains(result.err, std::string("did you mean ") + slip.near)) << result.err;
  }
  EXPECT_EQ(run({"m.lp", "--threads", "99"}).exit, 7) << "as many as there are; the model is missing";
  const std::string version = run({"--version"}).out;
  EXPECT_TRUE(contains(version, "\ncommit ") && contains(version, "\nlicence Apache-2.0")) << version;
}

/* A line that holds `part` and ends with `end`. */
bool has_line(const std::string& text, const std::string& part, const std::string& end) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (contains(line, part) && line.ends_with(end)) return true;
  }
  return false;
}

/* What is installed beside the program knows every option that it has. */
TEST_F(Program, ManualPageAndCompletionsKnowEveryOption) {
  const fs::path share = fs::path(TOVIK_SOURCE_DIR) / "cli/share";
  std::string manual = contents(share / "tovik.1");
  std::erase(manual, '\\');
  const std::string bash = contents(share / "tovik.bash"), zsh = contents(share / "_tovik");
  const std::string fish = contents(share / "tovik.fish");
  for (const char* verb : {"solve", "convert", "display", "check", "verify", "params"}) {
    EXPECT_TRUE(contains(manual, verb));
    const auto line_of = [&](const std::string& text, const std::string& head) {
      const std::size_t begin = text.find(head);
      return begin == std::string::npos ? "" : text.substr(begin, text.find('\n', begin) - begin) + " ";
    };
    const std::string of_bash = line_of(bash, std::string("    ") + verb + ") options="),
                      of_zsh = line_of(zsh, std::string("  (") + verb + ") known=");
    const std::string help = run({"help", verb}).out;
    const std::string of_fish = std::string("-n \"__tovik_verb ") + verb + "\"";
    int options = 0;
    for (std::size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2)) {
      if (at < 2 || (help[at - 1] != ',' && help.compare(at - 3, 3, "\n  ") != 0)) continue;
      const std::string option = help.substr(at, help.find_first_of(" \n:", at) - at);
      ++options;
      EXPECT_TRUE(contains(manual, "fB" + option + "fR")) << option;
      EXPECT_TRUE(contains(of_bash, option)) << verb << ' ' << option;
      EXPECT_TRUE(contains(of_zsh, option)) << verb << ' ' << option;
      EXPECT_TRUE(has_line(fish, of_fish, " -l " + option.substr(2))) << verb << ' ' << option;
    }
    EXPECT_GE(options, 3) << verb;
  }
}

/* The completions as the shells run them, where these are installed. */
TEST_F(Program, ShellsCompleteVerbsAndOptions) {
  const std::string share = TOVIK_SOURCE_DIR "/cli/share/";
  const auto shell = [&](const std::string& command) {
    const std::string output = (folder_ / "completed").string();
    return std::system(
               ("cd '" + folder_.string() + "' && HOME=. " + command + " >" + output + " 2>&1").c_str()) == 0
               ? contents(output)
               : std::string();
  };
  write("solver.lp", kOptimal);
  if (std::system("command -v fish >/dev/null") == 0) {
    const auto completed = [&](const std::string& line) {
      return shell("fish --no-config -c 'source " + share + "tovik.fish; complete -C \"" + line + "\"'");
    };
    EXPECT_EQ(completed("tovik so"), "solve\nsolver.lp\n");
    EXPECT_EQ(completed("tovik check --s"), "--set\n--strict\n");
    EXPECT_EQ(completed("tovik help c"), "check\nconvert\n");
    EXPECT_EQ(completed("tovik --method d"), "dual\n");
  }
  const std::string bash =
      shell("bash -c 'source " + share +
            "tovik.bash; COMP_WORDS=(tovik check --s); COMP_CWORD=2; _tovik; echo ${COMPREPLY[@]}'");
  EXPECT_EQ(bash, "--strict --set\n");
  if (std::system("command -v zsh >/dev/null") == 0) {
    EXPECT_EQ(shell("zsh -n " + share + "_tovik && echo sound"), "sound\n");
  }
}

TEST_F(Program, UnknownParameterNamesTheNearestAndSolvesNothing) {
  write("model.lp", kOptimal);
  const Result result = run({"model.lp", "--json", "--set", "tilm=3"});
  EXPECT_EQ(result.exit, 2);
  EXPECT_EQ(result.out, "");
  for (const char* name : {"tilm", " TILIM", " ITLIM"}) EXPECT_TRUE(contains(result.err, name)) << result.err;
}

TEST_F(Program, RefusesWrongUsage) {
  write("model.lp", kOptimal);
  const Words wrong[] = {{},
                         {"--set", "ITLIM=3"},
                         {"model.lp", "--set", "ITLIM"},
                         {"model.lp", "--set", "ITLIM=many"},
                         {"model.lp", "--set", "ITLIM=-1"},
                         {"model.lp", "--set", "ITLIM=1.5"},
                         {"model.lp", "--set", "SCRIND=1"},
                         {"model.lp", "--set", "1011=1"},
                         {"model.lp", "--gap", "2"},
                         {"model.lp", "--method", "magic"},
                         {"model.lp", "--log", "absent/log"},
                         {"model.lp", "--frobnicate"},
                         {"params", "no-such-thing"}};
  for (const Words& words : wrong) {
    const Result result = run(words);
    EXPECT_EQ(result.exit, 2) << Json(words);
    EXPECT_EQ(result.out.empty(), !words.empty()) << result.out;  // only the bare name prints the help
  }
  for (const char* verb : {"solve", "convert", "display", "check", "verify"}) {
    const Result result = run({verb});
    EXPECT_EQ(result.exit, 2) << verb << ": a script whose list of files is empty must not pass";
    EXPECT_TRUE(contains(result.out, "Usage:")) << verb;
  }
}

TEST_F(Program, LaterSettingsWinAndAnyCaseWillDo) {
  const Result result = run(
      {"params", "itlim", "--set", "tvk_param_ItLim=7", "--set", "ITLIM=9", "-t", "5", "--set", "TILIM=6"});
  ASSERT_EQ(result.exit, 0) << result.err;
  EXPECT_TRUE(contains(result.out, "9*")) << result.out;
  EXPECT_FALSE(contains(result.out, "7*")) << result.out;
  EXPECT_TRUE(contains(run({"params", "TILIM", "-t", "5", "--set", "TILIM=6"}).out, "6*"));
  EXPECT_TRUE(contains(run({"params", "TILIM", "--set", "TILIM=6", "-t", "5"}).out, "5*"));
  EXPECT_TRUE(contains(run({"params", "lpmethod", "--method", "Dual"}).out, "2*"));
  const Result all = run({"params", "--all"});
  EXPECT_EQ(std::count(all.out.begin(), all.out.end(), '\n'), 154) << "a head and every named parameter";
  EXPECT_TRUE(contains(run({"params", "BARQ*", "--all"}).out, "BARQCPEPCOMP"));
  const Result hidden = run({"params", "BARQ*"});
  EXPECT_EQ(hidden.exit, 2);
  EXPECT_TRUE(contains(hidden.err, "--all")) << hidden.err;
  EXPECT_FALSE(contains(run({"params"}).out, "without effect"));
}

TEST_F(Program, ParameterFileComesBeforeTheCommandLine) {
  write("p.prm", "TOVIK Parameter File Version 12.2.0.0\nTVK_PARAM_ITLIM 5\nTVK_PARAM_EPOPT 1e-7\n");
  const Result both = run({"params", "--set", "itlim=9", "--params", "p.prm"});
  EXPECT_EQ(both.exit, 0) << both.err;
  std::istringstream lines(both.out);
  std::string iterations, optimality;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("ITLIM ")) iterations = line;
    if (line.starts_with("EPOPT ")) optimality = line;
  }
  EXPECT_NE(iterations.find(" 9* "), std::string::npos) << iterations;
  EXPECT_NE(optimality.find("1e-07"), std::string::npos) << optimality;
  write("q.prm", "no header\n");
  const Result wrong = run({"params", "--params", "q.prm"});
  EXPECT_EQ(wrong.exit, 7);
  EXPECT_EQ(wrong.err, "q.prm: TOVIK Error  1661: Line 1:  Missing or invalid header.\n");
}

}  // namespace
