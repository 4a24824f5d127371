// Bad tables, one file per rule: each is refused with exactly the messages that stand beside it, and nothing is
// written. <rule>.yaml is the only package of a model; <rule>.model.yaml is a model whose folder "good" is a good
// package.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "workspace.hpp"

namespace modelgen::test {
namespace {

namespace fs = std::filesystem;

fs::path badTables() { return fs::path(MODELGEN_TEST_DIR) / "bad"; }

std::vector<std::string> rules() {
  std::vector<std::string> result;
  for (auto const& each : fs::directory_iterator(badTables())) {
    if (each.path().extension() == ".yaml") result.push_back(each.path().stem().string());
  }
  std::sort(result.begin(), result.end());
  return result;
}

std::string replaceAll(std::string text, std::string const& from, std::string const& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Lays the bad table of a rule out as part of a model that is fine otherwise.
Options layOut(Workspace const& workspace, std::string const& rule) {
  std::string const table = rule + ".yaml";
  if (fs::path(rule).extension() == ".model") {
    workspace.copy(badTables() / table, "model.yaml");
    workspace.copy(testTables() / "good/good/package.yaml", "good/package.yaml");
  } else {
    workspace.write("model.yaml",
                    "model: bad_datamodel\nrelease: R1\nimports: [base_datamodel]\n"
                    "packages: [{name: tessel.bad, folder: bad}]\n");
    workspace.copy(badTables() / table, "bad/package.yaml");
  }
  Options options = goodOptions(workspace);
  options.model = workspace.path("model.yaml").string();
  return options;
}

// The messages with the table called by its name in the corpus.
std::string named(std::string text, Workspace const& workspace, std::string const& rule) {
  std::string const table = rule + ".yaml";
  text = replaceAll(text, workspace.path("bad/package.yaml").string(), table);
  text = replaceAll(text, workspace.path("model.yaml").string(), table);
  text = replaceAll(text, testTables().string() + "/", "");
  return replaceAll(text, workspace.path("").string(), "");
}

TEST(BadTables, AreRefusedWithTheirMessagesAndWriteNothing) {
  // The folder holds an earlier good state, so that a file changed or deleted would show as well as a new one.
  Workspace const workspace;
  ASSERT_EQ(generate(goodOptions(workspace)).status, ExitStatus::done);
  auto const before = workspace.snapshot("out");
  ASSERT_THAT(before, testing::Not(testing::IsEmpty()));

  for (std::string const& rule : rules()) {
    SCOPED_TRACE(rule);
    fs::remove_all(workspace.path("good"));
    fs::remove_all(workspace.path("bad"));
    Options options = layOut(workspace, rule);
    options.depfile = workspace.path("out/depfile").string();

    Result const result = generate(options);

    EXPECT_EQ(result.status, ExitStatus::refused);
    EXPECT_EQ(named(result.err, workspace, rule), read(badTables() / (rule + ".expected")));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(workspace.snapshot("out"), before);
  }
}

}  // namespace
}  // namespace modelgen::test
