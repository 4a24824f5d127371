// Templates and the output folder: what is written, left alone, deleted, and refused.
#include <gmock/gmock.h>

#include <sstream>

#include "modelgen/TemplateSet.hpp"
#include "workspace.hpp"

namespace modelgen::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

class Templates : public testing::Test {
 protected:
  std::string render(std::string const& text, Data const& data) {
    workspace.write("t.mustache", text);
    TemplateSet templates(workspace.path("").string(), diagnostics);
    return templates.render("t.mustache", {"outputs.yaml", 1, 1}, data);
  }

  // The messages of a template that must not render, without the folder.
  std::string refusal(std::string const& text, Data const& data) {
    diagnostics = Diagnostics();
    EXPECT_EQ(render(text, data), "");
    std::string result;
    for (Diagnostic const& each : diagnostics.sorted()) {
      result += fs::path(each.at.file).filename().string() + ":" + std::to_string(each.at.line) + ":" +
                std::to_string(each.at.column) + ": " + each.text + "\n";
    }
    return result;
  }

  static Data sample() {
    Data data;
    data.set("name", "x<y>&\"z\"");
    data.set("yes", true);
    data.set("no", false);
    Data list(Data::type::list);
    for (char const* const each : {"a", "b"}) list.push_back(Data("item", each));
    data.set("list", list);
    return data;
  }

  Workspace workspace;
  Diagnostics diagnostics;
};

TEST_F(Templates, PrintTextAsItIs) { EXPECT_EQ(render("{{name}}|{{&name}}\n", sample()), "x<y>&\"z\"|x<y>&\"z\"\n"); }

TEST_F(Templates, TagsAloneOnTheirLineLeaveNoLineAndBlankLinesStay) {
  workspace.write("part.mustache", "\n[{{item}}]\n");
  EXPECT_EQ(render("{{! two\n lines }}\n"
                   "first\n"
                   "  {{#no}}\n  gone\n  {{/no}}\n"
                   "{{#list}}\n{{>part}}\n{{^last}}\n{{/last}}\n{{/list}}\n"
                   "\n"
                   "{{#yes}}\n\n  kept {{! inline }}\n{{/yes}}\n"
                   "last",
                   [] {
                     Data data = sample();
                     data.set("last", true);
                     return data;
                   }()),
            "first\n\n[a]\n\n[b]\n\n\n  kept \nlast");
  EXPECT_TRUE(diagnostics.empty());
}

TEST_F(Templates, AnswerEveryTagOrNameIt) {
  EXPECT_EQ(refusal("one\n  {{nmae}} {{#list}}{{itme}}{{/list}}\n", sample()),
            "t.mustache:2:3: undefined key 'nmae', expected a key of the data in this place\n"
            "t.mustache:2:21: undefined key 'itme', expected a key of the data in this place\n");
  EXPECT_EQ(refusal("{{#yes}}\n  {{^absent}}\n  {{/absent}}\n{{/yes}}", sample()),
            "t.mustache:2:3: undefined key 'absent', expected a key of the data in this place\n");
  EXPECT_EQ(refusal("{{list}}{{#name}}{{/name}}", sample()),
            "t.mustache:1:1: the key 'list' is no text, expected a text\n"
            "t.mustache:1:9: the key 'name' is a text, expected a list, an object or a flag for a section\n");
  workspace.write("part.mustache", "\n{{gone}}");
  EXPECT_THAT(refusal("{{>part}}{{>absent}}", sample()),
              testing::StartsWith("part.mustache:2:1: undefined key 'gone', expected a key of the data in this place\n"
                                  "t.mustache:1:10: cannot read the template "));
  EXPECT_THAT(refusal("a\n{{#yes}}", sample()), HasSubstr("t.mustache:2:1: not a template: Unclosed section \"yes\""));
  EXPECT_THAT(refusal("{{=<% %>=}}", sample()), HasSubstr("t.mustache:1:1: the delimiters of tags are changed"));
  workspace.write("loop.mustache", "{{>loop}}");
  EXPECT_THAT(refusal("{{>loop}}", sample()), HasSubstr("the partial 'loop' reaches itself"));
}

TEST_F(Templates, TakeTheTextsOfAKindFromItsFileOrFromTheOneItIsLikeOrFromThatOfEveryKind) {
  Data data = sample();
  Data list(Data::type::list);
  for (char const* const kind : {"plain", "map"}) list.push_back(Data("scheme", kind));
  data.set("properties", list);
  auto const kind = [this](std::string const& name, std::string const& text) {
    workspace.write("kinds/" + name + ".mustache", text);
  };
  kind("every", "{{! none }}\n{{#like}}{{/like}}\n{{#row}}{{/row}}\n{{#block}}\n  no {{>kind.row}}\n{{/block}}\n");
  kind("plain", "{{#row}}{{scheme}} of {{name}}{{/row}}\n");
  kind("map", "{{#like}}plain{{/like}}\n{{#block}}\n  [{{>kind.row}}]\n{{/block}}\n");
  std::string const loop = "{{#properties}}\n{{>kind.block}}\n{{/properties}}\n";
  EXPECT_EQ(render(loop, data), "  no plain of x<y>&\"z\"\n  [map of x<y>&\"z\"]\n");

  EXPECT_EQ(refusal("{{>kind.row}}", data),
            "t.mustache:1:1: undefined key 'scheme', expected a key of the data in this place\n");
  EXPECT_EQ(refusal("{{#properties}}\n {{>kind.raw}}\n{{/properties}}", data),
            "t.mustache:2:2: unknown text 'raw' of a kind, expected block, like or row\n");
  kind("map", "\n{{#raw}}{{/raw}}\n  stray\n{{#row}}{{/row}}\n {{#row}}{{nmae}}{{/row}}{{#block}}{{nmae}}{{/block}}");
  EXPECT_EQ(refusal(loop, data),
            "map.mustache:2:1: unknown text 'raw' of a kind, expected block, like or row\n"
            "map.mustache:3:3: this belongs to no text of the kind, expected a section for each text\n"
            "map.mustache:5:2: the text 'row' stands twice, expected it once\n"
            "map.mustache:5:36: undefined key 'nmae', expected a key of the data in this place\n");
  kind("map", "{{#like}}map{{/like}}");
  EXPECT_EQ(refusal(loop, data),
            "map.mustache:1:1: this kind is like itself, expected another kind that is not like this one\n");
  kind("map", "{{#like}}absent{{/like}}");
  EXPECT_THAT(refusal(loop, data), testing::StartsWith("map.mustache:1:1: cannot read the template "));
}

class Output : public testing::Test {
 protected:
  void SetUp() override {
    options = goodOptions(workspace);
    options.templates = workspace.path("templates").string();
    plan(
        "- {template: class, for: class, path: \"c/{{name}}.txt\", when: isConcrete}\n"
        "- {template: model, for: model, path: \"model.txt\"}\n");
    workspace.write("templates/class", "class {{qualifiedName}} {{lastIndex}}\n");
    workspace.write("templates/model", "{{name}}\n");
  }

  void plan(std::string const& rows) const { workspace.write("templates/outputs.yaml", "outputs:\n" + rows); }

  Result run(Mode mode) {
    options.mode = mode;
    return generate(options);
  }

  Workspace workspace;
  Options options;
};

TEST_F(Output, IsWhatThePlanSays) {
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  EXPECT_EQ(read(workspace.path("out/c/Archive.txt")), "class tessel.good.shop.Archive 17\n");
  EXPECT_FALSE(fs::exists(workspace.path("out/c/SmallItem.txt"))) << "abstract";
  EXPECT_EQ(
      run(Mode::listOutputs).out,
      "c/Archive.txt\nc/Depot.txt\nc/Item.txt\nc/Label.txt\nc/PriceLabel.txt\nc/Shop.txt\nc/TinyItem.txt\nmodel.txt\n");
}

TEST_F(Output, LeavesWhatDidNotChangeAndDeletesWhatIsNoLongerMade) {
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  workspace.write("out/c/mine.txt", "not generated");
  auto const before = workspace.snapshot("out");
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  EXPECT_EQ(workspace.snapshot("out"), before);

  plan("- {template: model, for: model, path: \"m/{{name}}.txt\"}\n");
  workspace.write("out/c/Item.txt", "changed by hand");
  Result const check = run(Mode::check);
  EXPECT_EQ(check.status, ExitStatus::outOfDate);
  EXPECT_EQ(check.out,
            "stale c/Archive.txt\nstale c/Depot.txt\nstale c/Item.txt\nstale c/Label.txt\nstale c/PriceLabel.txt\n"
            "stale c/Shop.txt\nstale c/TinyItem.txt\nmissing m/good_datamodel.txt\nstale model.txt\n");
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  EXPECT_EQ(workspace.snapshot("out/c").size(), 1u) << "the file of somebody else stays";
  EXPECT_TRUE(fs::exists(workspace.path("out/m/good_datamodel.txt")));
  EXPECT_FALSE(fs::exists(workspace.path("out/model.txt")));
}

TEST_F(Output, CheckFindsAChangedFileAndWritesNothing) {
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  EXPECT_EQ(run(Mode::check).status, ExitStatus::done);
  workspace.write("out/model.txt", "changed by hand");
  auto const before = workspace.snapshot("out");
  EXPECT_EQ(run(Mode::check).out, "changed model.txt\n");
  EXPECT_EQ(workspace.snapshot("out"), before);
}

TEST_F(Output, OfTwoModelsSharesAFolder) {
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  Options base = options;
  base.model = base.imports.front();
  base.imports.clear();
  plan("- {template: model, for: model, path: \"{{name}}.txt\"}\n");
  ASSERT_EQ(generate(base).status, ExitStatus::done);
  EXPECT_TRUE(fs::exists(workspace.path("out/c/Archive.txt")));
}

TEST_F(Output, OutsideTheFolderIsNeitherWrittenNorDeleted) {
  workspace.write("victim.txt", "stays");
  workspace.write("out/.modelgen-good_datamodel.list", "../victim.txt\n/etc/hostname\n");
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  EXPECT_EQ(read(workspace.path("victim.txt")), "stays");
  plan("- {template: model, for: model, path: \"../victim.txt\"}\n");
  EXPECT_THAT(run(Mode::write).err, HasSubstr("outputs.yaml:2:39: the path '../victim.txt' leaves the output folder"));
  EXPECT_EQ(read(workspace.path("victim.txt")), "stays");
}

TEST_F(Output, IsNotTouchedWhereATemplateIsWrong) {
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  auto const before = workspace.snapshot("out");
  workspace.write("templates/model", "changed {{name}}\n");
  workspace.write("templates/class", "{{nmae}}");
  Result const result = run(Mode::write);
  EXPECT_EQ(result.status, ExitStatus::refused);
  EXPECT_THAT(result.err,
              testing::EndsWith("/class:1:1: undefined key 'nmae', expected a key of the data in this place\n"));
  EXPECT_EQ(workspace.snapshot("out"), before);
}

TEST_F(Output, PlanThatMakesNoSenseIsRefused) {
  auto const refused = [this](std::string const& row) {
    plan(row);
    Result const result = run(Mode::write);
    EXPECT_EQ(result.status, ExitStatus::refused) << row;
    return result.err;
  };
  EXPECT_THAT(refused("- {template: model, for: family, path: \"x\"}\n"),
              HasSubstr(":2:26: unknown scope 'family', expected model, package, class, datatype or enum"));
  EXPECT_THAT(refused("- {template: class, for: class, path: \"same\"}\n"), HasSubstr("the path 'same' is made twice"));
  EXPECT_THAT(refused("- {template: class, for: class, path: \"{{name}}\", when: name}\n"),
              HasSubstr("'name' is no flag of the data"));
  EXPECT_THAT(refused("- {template: absent, for: model, path: \"x\"}\n"), HasSubstr(":2:14: cannot read the template"));
}

TEST_F(Output, DepfileNamesEveryFileThatWasRead) {
  options.depfile = workspace.path("files.d").string();
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  std::string const text = read(options.depfile);
  EXPECT_THAT(text, HasSubstr("out/model.txt "));
  for (char const* const file : {"good/model.yaml", "good/good/package.yaml", "base/base/package.yaml",
                                 "templates/outputs.yaml", "templates/class", "templates/model"}) {
    EXPECT_THAT(text, HasSubstr(file));
  }
}

TEST_F(Output, OfTheGeneratorsTemplatesFitsTheColumnLimitAndOpensNoNamespaceTwiceInARow) {
  options.templates = MODELGEN_TEMPLATES;
  ASSERT_EQ(run(Mode::write).status, ExitStatus::done);
  int files = 0;
  for (auto const& [path, content] : workspace.snapshot("out")) {
    auto const extension = fs::path(path).extension();
    if (extension != ".hpp" && extension != ".cpp") continue;
    ++files;
    std::istringstream lines(content.first);
    std::string closed;
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), 120U) << path << ": " << line;
      if (line.empty()) continue;
      EXPECT_FALSE(!closed.empty() && line == closed + " {") << path << ": " << line;
      closed = line.rfind("}  // namespace ", 0) == 0 ? line.substr(6) : "";
    }
  }
  EXPECT_GT(files, 20);
}

TEST_F(Output, FolderThatCannotBeWrittenIsAFailureWithItsName) {
  workspace.write("out", "a file");
  Result const result = run(Mode::write);
  EXPECT_EQ(result.status, ExitStatus::refused);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("out").string()));
}

TEST_F(Output, FileThatCannotBeReplacedIsNamedAndNoTemporaryOneStays) {
  workspace.write("out/model.txt/inside.txt", "a folder where a file should be");
  Result const result = run(Mode::write);
  EXPECT_EQ(result.status, ExitStatus::refused);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("out/model.txt").string()));
  EXPECT_FALSE(fs::exists(workspace.path("out/model.txt.new")));
  EXPECT_TRUE(fs::exists(workspace.path("out/model.txt/inside.txt")));
}

}  // namespace
}  // namespace modelgen::test
