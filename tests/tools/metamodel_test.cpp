// tessel-metamodel tells by reflection what the tables say, fact by fact, and prints it in three forms.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "metamodel_tables.hpp"

using tables::Json;

namespace {

struct Printed {
  int status;
  std::string output;  ///< what it printed on both streams
};

Printed run(std::string const& arguments) {
  std::string const command = "'" METAMODEL_PROGRAM "' " + arguments + " 2>&1";
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return {-1, "popen failed"};
  Printed result{0, ""};
  std::array<char, 65536> buffer{};
  for (std::size_t read = 0; (read = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
    result.output.append(buffer.data(), read);
  }
  result.status = WEXITSTATUS(pclose(pipe));
  return result;
}

Json document() {
  Printed const json = run("--json");
  EXPECT_EQ(json.status, 0) << json.output;
  return Json::parse(json.output);
}

std::size_t total(Json const& types, char const* part) {
  std::size_t sum = 0;
  for (Json const& type : types) sum += type.at(part).size();
  return sum;
}

TEST(Metamodel, HasTheCountsOfTheModel) {
  Json const found = document();
  EXPECT_EQ(found["packages"].size(), 9U);
  EXPECT_EQ(found["classes"].size(), 67U);
  EXPECT_EQ(found["datatypes"].size(), 5U);
  EXPECT_EQ(found["enums"].size(), 6U);
  EXPECT_EQ(total(found["enums"], "literals"), 44U);
  EXPECT_EQ(total(found["classes"], "properties") + total(found["datatypes"], "properties"), 208U);
  EXPECT_EQ(total(found["datatypes"], "operations"), 1U);
}

TEST(Metamodel, TellsEveryFactOfTheTables) {
  Json found = document();
  for (Json& package : found["packages"]) {
    std::string const uri = package["uri"];
    auto const path = uri.find("/plinth/");
    ASSERT_NE(path, std::string::npos) << uri;
    EXPECT_THAT(uri.substr(0, path), testing::StartsWith("http")) << "a full URI";
    package["uri"] = uri.substr(path);
  }
  Json const expected = tables::expectedDocument(METAMODEL_REPOSITORY);
  for (char const* kind : {"packages", "classes", "datatypes", "enums"}) {
    ASSERT_EQ(found[kind].size(), expected[kind].size());
    for (std::size_t i = 0; i < expected[kind].size(); ++i) EXPECT_EQ(found[kind][i], expected[kind][i]);
  }
  EXPECT_EQ(found.dump(), expected.dump()) << "keys in the order told";
}

TEST(Metamodel, IdentitiesAreDigestsOfNames) {
  // The digest of the empty text is well known; version and variant are stamped into it.
  EXPECT_EQ(tables::nameUuid(""), "d41d8cd9-8f00-3204-a980-0998ecf8427e");
  EXPECT_EQ(document()["packages"][0]["uuid"], tables::nameUuid("tessel_config_datamodel"));
}

TEST(Metamodel, TreeNamesEveryPackageTypeAndProperty) {
  Printed const tree = run("");
  ASSERT_EQ(tree.status, 0) << tree.output;
  Json const found = document();
  auto const simpleName = [](Json const& row) {
    std::string const name = row["name"];
    return name.substr(name.rfind('.') + 1);
  };
  for (Json const& package : found["packages"]) {
    EXPECT_THAT(tree.output, testing::HasSubstr(package["uri"].get<std::string>() + "\n"));
  }
  for (Json const& type : found["classes"]) {
    EXPECT_THAT(tree.output, testing::HasSubstr("class " + simpleName(type)));
    for (Json const& property : type["properties"])
      EXPECT_THAT(tree.output, testing::HasSubstr("  " + simpleName(property)));
  }
  EXPECT_THAT(tree.output,
              testing::HasSubstr("Contents       refers to sequence of ControllableState  unique  opposite "
                                 "ControllableState.Category\n"));
  EXPECT_THAT(tree.output, testing::Not(testing::HasSubstr("vellum.internal.form.model\n")));
}

TEST(Metamodel, ShowsOtherModelsWhenAsked) {
  Json const own = document();
  Json const all = Json::parse(run("--json --all").output);
  for (char const* kind : {"packages", "classes", "datatypes", "enums"}) {
    ASSERT_GE(all[kind].size(), own[kind].size());
    for (std::size_t i = 0; i < own[kind].size(); ++i) EXPECT_EQ(all[kind][i]["name"], own[kind][i]["name"]);
  }
  EXPECT_THAT(all.dump(), testing::AllOf(testing::HasSubstr("\"vellum.internal.form.model.DecoratedMessage\""),
                                         testing::HasSubstr("\"name\":\"plinth.ModelElement\"")));
  EXPECT_THAT(run("--all").output, testing::HasSubstr("abstract class ModelElement"));
}

TEST(Metamodel, DrawsEachPackageAndRefusesWhatIsNone) {
  Json const all = document();
  for (Json const& package : all["packages"]) {
    std::string const name = package["name"];
    Printed const diagram = run("--diagram '" + name + "'");
    bool const hasTypes =
        name.rfind('.') != std::string::npos && name != "tessel.internal" && name != "tessel.internal.config";
    if (hasTypes) {
      EXPECT_EQ(diagram.status, 0) << diagram.output;
      EXPECT_THAT(diagram.output,
                  testing::AllOf(testing::StartsWith("digraph \"" + name + "\" {\n"), testing::EndsWith("}\n")));
    }
  }
  Printed const unknown = run("--diagram nothing");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_THAT(unknown.output,
              testing::StartsWith("tessel-metamodel: there is no package \"nothing\" with types; there are:"));
  EXPECT_EQ(run("--json --diagram tessel.internal.ext").status, 2);
  EXPECT_EQ(run("--nonsense").status, 2);
}

}  // namespace
