// Scripts on the host: construction, properties, methods, arrays, collections, enumerations, errors, and letting go.
#include <csignal>

#include "Interrupt.hpp"
#include "corvid/CorvidClass.hpp"
#include "corvid/Invocation.hpp"
#include "kestrel/Array.hpp"
#include "script_fixture.hpp"

namespace luafront {
namespace {

TEST_F(ScriptTest, findsPackagesAndClassesByTheirNames) {
  run(R"(
    assert(tostring(zoo.residents) == "zoo.residents" and zoo.residents == residents)
    assert(tostring(Cat) == "zoo.residents.Cat" and residents.Cat == Cat and Cat ~= Animal)
    assert(undefined_name == nil)
    local names = table.concat(host.classes(residents), " ")
    assert(names == "Animal Cat Herd Place Diet", names)
    assert(table.concat(host.properties(Cat), " ") == "Name Weight Tame Age Diet Mother Offspring Herd")
    assert(table.concat(host.methods(Cat()), " ") == "purr feed die trial sing")
  )");
  EXPECT_NE(failureOf("local x = residents.Dodo").find("script:1: NoSuchClass: Package 'zoo.residents'"),
            std::string::npos);
  EXPECT_NE(failureOf("residents.Dodo = 1").find("ReadOnlyProperty"), std::string::npos);
}

TEST_F(ScriptTest, constructsFromATableAndReadsAndWritesEveryShapeOfProperty) {
  run(R"(
    local tom = Cat({Name = "Tom"}, 4.5)
    assert(tom.Name == "Tom" and tom.Weight == 4.5 and tom.Tame == false and tom.Age == nil and tom.Mother == nil)
    tom.Name, tom.Weight, tom.Tame, tom.Age, tom.Diet = "Größe 🐈", 3, 1, 4, "MEAT"
    assert(tom.Name == "Größe 🐈" and math.type(tom.Weight) == "float" and tom.Tame == true)
    assert(math.type(tom.Age) == "integer" and tom.Age == 4 and tom.Diet == "MEAT")
    tom.Age = nil
    assert(tom.Age == nil)
    local mother = Cat()
    tom.Mother = mother
    assert(tom.Mother == mother and rawequal(tom.Mother, mother) and tom.Mother ~= tom)
    assert(host.class(mother) == "zoo.residents.Cat" and host.isa(mother, "zoo.residents.Animal"))
    assert(not host.isa(Animal(), "zoo.residents.Cat") and host.isa(1.5, "double") and host.class("x") == "char")
    tom.Mother = nil
    assert(tom.Mother == nil)
  )");
}

TEST_F(ScriptTest, walksArraysOfObjectsAndAssignsThemWhole) {
  run(R"(
    local mother = Cat()
    assert(#mother.Offspring == 0 and host.class(mother.Offspring) == "zoo.residents.Animal")
    local one, two = Cat({Name = "one"}), Animal({Name = "two"})
    mother.Offspring = {one}
    assert(#mother.Offspring == 1 and mother.Offspring[1] == one, "a sequence of one is a sequence")
    mother.Offspring = {one, two}
    local names = {}
    for i, child in ipairs(mother.Offspring) do names[i] = child.Name end
    assert(table.concat(names, " ") == "one two")
    for i, child in pairs(mother.Offspring) do assert(child.Name == names[i]) end
    assert(select("#", table.unpack(mother.Offspring)) == 2 and mother.Offspring[3] == nil)
    assert(mother.Offspring == mother.Offspring)
    mother.Offspring = mother.Offspring
    assert(#mother.Offspring == 2)
    local ok, message = pcall(function() mother.Offspring[1] = two end)
    assert(not ok and message.identifier == "Kestrel:class:ReadOnlyProperty")
    mother.Offspring = {}
    assert(#mother.Offspring == 0)
  )");
}

TEST_F(ScriptTest, walksCollectionObjectsByTheirMethods) {
  run(R"(
    local mother = Cat()
    mother.Offspring = {Cat({Name = "a"}), Cat({Name = "b"})}
    local herd = mother.Herd
    assert(#herd == 2 and herd[2].Name == "b" and herd[3] == nil and herd:at(1).Name == "a")
    local seen = ""
    for position, child in pairs(herd) do seen = seen .. position .. child.Name end
    for _, child in ipairs(herd) do seen = seen .. child.Name end
    assert(seen == "1a2bab", seen)
    do local scope <close> = mother.Herd end
    assert(#herd == 0, "a class with the method close is closed at the end of the block")
    assert(not pcall(function() for _ in pairs(mother) do end end))
  )");
}

TEST_F(ScriptTest, usesEnumerationsByTheTextOfTheirLiterals) {
  run(R"(
    local Diet = residents.Diet
    assert(Diet.MEAT == "MEAT" and Diet(2) == "MEAT" and Diet("PLANTS") == "PLANTS" and Diet.getValue("EVERYTHING") == 5)
    local cat = Cat()
    cat.Diet = Diet.EVERYTHING
    assert(cat.Diet == Diet.EVERYTHING)
    assert(not pcall(function() return Diet.STONES end))
  )");
  std::string const failure = failureOf("local cat = Cat()\ncat.Diet = 'STONES'");
  EXPECT_NE(
      failure.find("script:2: WrongType: Property 'Diet' of 'zoo.residents.Cat': Expected one of 'PLANTS', 'MEAT', "
                   "'EVERYTHING', not the string 'STONES'."),
      std::string::npos)
      << failure;
}

TEST_F(ScriptTest, callsMethodsOfObjectsAndClasses) {
  run(R"(
    local cat = Cat()
    assert(cat:feed(2) == 3 and cat:feed(1, "supper") == 4 and cat:purr() == "purr")
    assert(Animal.count() == 1 and Animal:count() == 1 and cat:count() == 1)
    assert(select("#", cat:die()) == 0)
  )");
}

TEST_F(ScriptTest, aFunctionGivenToAMethodRunsInItsScopeAndItsErrorComesBackAsItWas) {
  run(R"(
    local cat = Cat()
    assert(cat:trial(function(same) same.Weight = 9 return same == cat end) == true and cat.Weight == 9)
    local mine = {}
    local ok, got = pcall(cat.trial, cat, function() cat.Weight = 100 error(mine) end)
    assert(not ok and rawequal(got, mine) and cat.Weight == 9)
    ok, got = pcall(cat.trial, cat, function() cat.Weight = 100 cat.Age = -1 end)
    assert(not ok and got.identifier == "Kestrel:class:ValueOutOfRange" and cat.Weight == 9)
    ok, got = pcall(cat.trial, cat, function() cat:trial(function() cat.Weight = 50 end) error("outer") end)
    assert(not ok and tostring(got):find("outer") and cat.Weight == 9)
    local routine = coroutine.wrap(function() return cat:trial(function() return "in a coroutine" end) end)
    assert(routine() == "in a coroutine")
  )");
}

TEST_F(ScriptTest, errorsOfNativesCarryIdentifierSentenceAndTheLineOfTheScript) {
  run(R"(
    local cat = Cat()
    local ok, failure = pcall(function()
      cat.Name = "Nobody"
    end)
    assert(not ok and failure.identifier == "Kestrel:native:Exception", failure.identifier)
    assert(failure.sentence == "An animal can't be called Nobody." and failure.where == "script:4: ", failure.where)
    assert(tostring(failure) == "script:4: An animal can't be called Nobody.")
    local function identifier(...) local _, raised = pcall(...) return raised.identifier end
    assert(identifier(cat.feed, cat) == "Kestrel:class:WrongArgumentCount")
    assert(identifier(cat.feed, cat, "much") == "Kestrel:class:WrongType")
    assert(identifier(function() return cat.Colour end) == "Kestrel:class:NoSuchMember")
    assert(identifier(function() cat.Colour = 1 end) == "Kestrel:class:NoSuchMember")
    assert(identifier(function() cat.feed = 1 end) == "Kestrel:class:ReadOnlyProperty")
    assert(identifier(function() cat.Herd = nil end) == "Kestrel:class:ReadOnlyProperty")
    assert(identifier(residents.Ghost) == "Kestrel:class:AbstractClass")
    assert(identifier(cat.sing, cat) == "Kestrel:class:NotImplemented")
    assert(identifier(function() cat.Mother = Place() end) == "Kestrel:class:WrongType")
  )");
  std::string const failure =
      failureOf("local cat = Cat()\nlocal function rename()\n  cat.Name = 'Nobody'\nend\nrename()");
  EXPECT_EQ(failure.find("tessel-script: script:3: An animal can't be called Nobody.\nstack traceback:"), 0u)
      << failure;
  EXPECT_NE(failure.find("script:5: in main chunk"), std::string::npos) << failure;
}

TEST_F(ScriptTest, anErrorNamesTheLineOfTheScriptBehindAnyFunctionOfC) {
  run(R"(
    local cat = Cat()
    cat:die()
    local _, failure = pcall(function()
      table.sort({1, 2}, function(...) return cat:feed(...) end)
    end)
    assert(failure.where == "script:5: ", failure.where)
    _, failure = pcall(function()
      string.gsub("x", "x", cat.purr)
    end)
    assert(failure.where == "script:9: ", failure.where)
  )");
}

TEST_F(ScriptTest, anErrorThatPassesThroughANativeKeepsItsValueAndItsCalls) {
  std::string const failure = failureOf(R"(
    local function inner() error("deep") end
    local function outer() inner() end
    Cat():trial(function() Cat():trial(outer) end)
  )");
  for (char const* call : {"script:2: deep", "in upvalue 'inner'", "script:3: in function", "script:4: in function",
                           "[C]: in method 'trial'", "in main chunk"})
    EXPECT_NE(failure.find(call), std::string::npos) << call << "\n" << failure;
  run(R"(
    local mute = setmetatable({}, {__tostring = function() error("no text") end})
    local ok, got = pcall(Cat().trial, Cat(), function() error(mute) end)
    assert(not ok and rawequal(got, mute))
  )");
  EXPECT_EQ(failureOf("error(setmetatable({}, {__tostring = error}))").find("tessel-script: (an error value"), 0u);
}

TEST_F(ScriptTest, everyErrorIsNamedAndJoinsWithATextToOne) {
  run(R"(
    local cat = Cat()
    local function failure(...) return select(2, pcall(...)) end
    local wrong = failure(function() return cat.Colour end)
    assert("failed: " .. wrong == "failed: " .. tostring(wrong) and (wrong .. "!"):find("Colour'.!", 1, true))
    assert(failure(function() cat[1] = 2 end).identifier == "Kestrel:class:ReadOnlyProperty")
    assert(failure(host.isa, cat, {}).identifier == "Kestrel:class:WrongType")
    assert(failure(host.array, {}, {}).identifier == "Kestrel:class:WrongType")
    assert(failure(host.array, "double", 1).identifier == "Kestrel:class:WrongType")
    assert(failure(function() return residents[{}] end).identifier == "Kestrel:class:WrongType")
    assert(failure(function() return Cat[{}] end).identifier == "Kestrel:class:WrongType")
  )");
}

TEST_F(ScriptTest, namesAreTakenWhole) {
  run(R"(
    local cat = Cat()
    assert(not pcall(function() return cat["Name\0x"] end))
    assert(not pcall(function() return Cat["Cat\0x"] end) and not pcall(function() return residents["Cat\0x"] end))
    assert(_G["zoo\0x"] == nil)
    local record = cat:trial(function() return {["a\0b"] = 1} end)
    assert(record["a\0b"] == 1 and record.a == nil)
    local ok, failure = pcall(Cat, {["Na\xffme"] = "Tom"})
    assert(not ok and failure.identifier == "Kestrel:class:WrongType")
  )");
}

TEST_F(ScriptTest, aClassStandsForItsNameWhereOneIsAskedFor) {
  run(R"(
    assert(host.isa(Cat(), Animal) and not host.isa(Animal(), Cat))
    assert(Animal.look(Cat) == "char ")
    local record = Cat():trial(function() return {class = Cat} end)
    assert(record.class == "zoo.residents.Cat")
  )");
}

TEST_F(ScriptTest, anInterruptEndsAScriptWhateverItRuns) {
  lua_register(m_interpreter->state(), "interrupt", [](lua_State*) { return std::raise(SIGINT); });
  for (char const* script :
       {"interrupt() while true do end", "coroutine.wrap(function() interrupt() while true do end end)()",
        "pcall(function() interrupt() while true do end end) while true do end",
        "local co = coroutine.create(function() interrupt() while true do end end)\n"
        "coroutine.wrap(function() coroutine.resume(co) while true do end end)()",
        "Cat():trial(function() interrupt() while true do end end)"}) {
    InterruptScope const scope(m_interpreter->state());
    EXPECT_NE(failureOf(script).find("interrupted"), std::string::npos) << script;
  }
  run("for i = 1, 10 do end assert(coroutine.wrap(function() return 7 end)() == 7)");
}

TEST_F(ScriptTest, coroutinesRunAsTheLibraryTells) {
  run(R"(
    local sum = coroutine.wrap(function(a) local b = coroutine.yield(a + 1) return a + b end)
    assert(sum(1) == 2 and sum(5) == 6 and not pcall(sum))
    local routine = coroutine.create(function() error("no") end)
    local ok, message = coroutine.resume(routine)
    assert(not ok and message == "script:4: no" and coroutine.status(routine) == "dead")
    local closed = false
    routine = coroutine.create(function()
      local scope <close> = setmetatable({}, {__close = function() closed = true end})
      coroutine.yield()
    end)
    coroutine.resume(routine)
    assert(coroutine.close(routine) and closed)
    assert(not pcall(coroutine.resume, 5) and not pcall(coroutine.wrap, 5))
  )");
}

TEST_F(ScriptTest, coroutinesThatRunEachOtherReachTheDepthOfPlainLua) {
  char const* const descend = R"(
    local reached
    local function descend(depth)
      reached = depth
      return select(2, pcall(coroutine.wrap(function() return descend(depth + 1) end)))
    end
    local wrapped = descend(1) and reached
    local function resume(depth)
      reached = depth
      coroutine.resume(coroutine.create(function() resume(depth + 1) end))
    end
    resume(1)
    depths = wrapped .. " " .. reached
  )";
  std::unique_ptr<lua_State, void (*)(lua_State*)> const plain(luaL_newstate(), lua_close);
  luaL_openlibs(plain.get());
  ASSERT_EQ(luaL_dostring(plain.get(), descend), LUA_OK) << lua_tostring(plain.get(), -1);
  lua_getglobal(plain.get(), "depths");
  // The script runs one call deeper than in the plain interpreter.
  run(descend);
  run("assert(depths == '" + std::string(lua_tostring(plain.get(), -1)) + "', depths)");
}

TEST_F(ScriptTest, packagesAreGlobalsWhateverMetatableGlobalsHave) {
  run(R"(
    setmetatable(_G, {__index = function(_, name) error("undeclared " .. name, 2) end, __newindex = error})
    assert(zoo.residents == residents and not pcall(function() return undeclared end))
    setmetatable(_G, nil)
    assert(rawget(_G, "zoo") == zoo)
  )");
}

TEST_F(ScriptTest, nilIsAnOptionalArgumentThatIsLeftOut) {
  run(R"(
    local cat = Cat(nil, nil)
    assert(cat.Name == "" and Cat(nil, 4.5).Weight == 4.5 and Cat({Name = "a"}, nil).Name == "a")
    assert(cat:feed(2, nil) == 3 and Animal.look("a", nil) == "char ")
    assert(Animal.look("a", nil, 2.0) == "char double double ", "one in front of another stands for nothing")
    local _, failure = pcall(cat.feed, cat, nil, nil)
    assert(failure.sentence:find("Argument 1 of 'feed': Expected a number, not nil", 1, true), failure.sentence)
    _, failure = pcall(cat.feed, nil, 2)
    assert(failure.sentence:find("'feed' is a member of one object, not of nil", 1, true), failure.sentence)
  )");
}

TEST_F(ScriptTest, anObjectWhoseNativeDiedIsANamedErrorAndNeverACrash) {
  run(R"(
    local cat, child = Cat(), Cat()
    child.Mother = cat
    cat:die()
    assert(not host.isvalid(cat) and host.isvalid(child))
    local function identifier(...) local _, raised = pcall(...) return raised.identifier end
    assert(identifier(function() return cat.Name end) == "Kestrel:class:InvalidHandle")
    assert(identifier(function() cat.Name = "x" end) == "Kestrel:class:InvalidHandle")
    assert(identifier(cat.purr, cat) == "Kestrel:class:InvalidHandle")
    assert(tostring(cat):find("destroyed"))
    assert(cat == cat and cat ~= child)
  )");
}

TEST_F(ScriptTest, lettingGoOfAnObjectLetsGoOfItsNative) {
  run(R"(
    local before = host.census().objects
    local cat = Cat()
    cat.Mother = Cat()
    assert(Animal.count() == 2 and host.census().objects == before + 1, "the mother lives in the cat alone")
    cat = nil
    assert(host.census().objects == before and Animal.count() == 0)
  )");
}

TEST_F(ScriptTest, valuesAreComparedByContentAndKeptAsObjects) {
  run(R"(
    local here, there = Place(), Place()
    assert(here == there and not rawequal(here, there))
    here.Latitude = 52.5
    assert(here ~= there and here.Latitude == 52.5)
  )");
}

TEST_F(ScriptTest, hostArraysKeepTheirClassAndTheirElements) {
  run(R"(
    local bytes = host.array("uint8", {1, 2, 255})
    assert(#bytes == 3 and bytes[3] == 255 and host.class(bytes) == "uint8" and bytes == host.array("uint8", {1, 2, 255}))
    assert(tostring(bytes) == "1 by 3 uint8 [1, 2, 255]")
    assert(tostring(host.array("uint64", {2^63, 1})) == "1 by 2 uint64 [9223372036854775808, 1]")
    assert(#host.array("double", {}) == 0 and host.class(host.array("string", {"a"})) == "string")
    assert(not pcall(host.array, "uint8", {256}))
    assert(not pcall(host.array, "uint8", {"x"}))
  )");
}

TEST_F(ScriptTest, tablesThatHaveNoHostValueAreRefusedByName) {
  for (char const* table : {"{1, Name = 'x'}", "{[1] = 1, [3] = 3}", "{[true] = 1}", "{coroutine.create(print)}",
                            "(function() local t = {} t.self = t return t end)()", "'\\xff'", "Cat"}) {
    std::string const failure = failureOf(std::string("Cat(") + table + ")");
    EXPECT_NE(failure.find("WrongType: "), std::string::npos) << table << ": " << failure;
  }
}

TEST_F(ScriptTest, nestedTablesCrossToTheHostAndBack) {
  run(R"(
    local cat = Cat()
    local function there_and_back(value) return cat:trial(function() return value end) end
    local record = there_and_back({name = "a", list = {1, 2, 3}, flags = {true, false}, texts = {"x", "y"},
                                   nested = {{k = 1}, {k = 2.5}}, object = cat, empty = {}})
    assert(record.name == "a" and #record.list == 3 and record.list[3] == 3 and record.flags[2] == false)
    assert(record.texts[2] == "y" and record.nested[2].k == 2.5 and record.object == cat and next(record.empty) == nil)
    local double = there_and_back(function(x) return 2 * x end)
    assert(double(21) == 42, "a function comes back as itself")
    assert(there_and_back(math.maxinteger) == math.maxinteger and there_and_back(nil) == nil)
  )");
}

TEST_F(ScriptTest, aFunctionThatANativeKeepsBeyondTheScriptIsANamedError) {
  run("kept = Cat() kept:trial(function() end)");
  lua_State* const state = m_interpreter->state();
  ASSERT_EQ(luaL_loadstring(state, "return 1"), LUA_OK);
  {
    auto reference = std::make_unique<LuaReference>(state);
    m_interpreter.reset();
    EXPECT_THROW(reference->push(nullptr), corvid::HostError);
  }
  m_interpreter = std::make_unique<Interpreter>(m_output, m_errors);
}

}  // namespace
}  // namespace luafront
