-- A model's error is an error of the script: identifier, sentence, and the line that caused it.
local check = require("check")
local runtime = tessel.internal.config.runtime
local state = runtime.ConfigurationState(plinth.Model(), {Params = {{Key = "a"}, {Key = "b"}}})

local failure = check.raises("plinth:messages:UniquenessConstraint", function()
  state.Params:get("a").Key = "b"
end)
local place = "ConfigurationState{" .. state:uuid():sub(1, 8) .. "}/Params"
check.equal(failure.sentence, "UniquenessConstraint: Property 'Key' of 'tessel.internal.config.runtime.ParamState': " ..
  "another element of " .. place .. ' already bears the key "b"; choose another key.')
assert(failure.where:find("errors.lua:7:"), failure.where)
for wanted, action in pairs({
  [place .. ' already bears the key "b"'] = function() state:createIntoParams({Key = "b"}) end,
  ['/Params already bears the key "c"'] = function()
    runtime.ConfigurationState(plinth.Model(), {Params = {{Key = "c"}, {Key = "c"}}})
  end,
  ['the model already bears the key "' .. state:uuid() .. '"'] = function()
    runtime.TagState(state:model(), state:uuid())
  end,
}) do
  local taken = check.raises("plinth:messages:UniquenessConstraint", action)
  assert(taken.sentence:find(wanted, 1, true), taken.sentence)
end
check.equal(tostring(failure), failure.where .. failure.sentence)

-- Uncaught inside coroutines and metamethods, and rethrown.
local routine = coroutine.create(function() state.Params:get("a").Key = "b" end)
local succeeded, raised = coroutine.resume(routine)
assert(not succeeded and raised.identifier == "plinth:messages:UniquenessConstraint")
check.raises("plinth:messages:UniquenessConstraint", function()
  local ok, again = pcall(function() state.Params:get("a").Key = "b" end)
  assert(not ok)
  error(again)
end)
check.equal(state.Params:get("a").Key, "a")

-- The line of the script, also where a function of C is what calls the model.
local values = state.Params
state:destroy()
failure = check.raises("Kestrel:class:InvalidHandle", function()
  for _ in pairs(values) do end
end)
assert(failure.where:find("errors.lua:42:"), failure.where)
assert("failed: " .. failure == "failed: " .. tostring(failure))

-- A value that has no form here is named.
for what, action in pairs({
  ["class or the full name of one, not the number 5"] = function() plinth.Model():elements(5) end,
  ["the text of a UUID, not nil"] = function() plinth.Model():findElement(nil) end,
  ["'createIntoTags' takes a struct"] = function()
    runtime.ConfigurationState(plinth.Model()):createIntoTags({{Id = "a"}, {Id = "b"}})
  end,
}) do
  failure = check.raises("plinth:messages:InvalidValue", action)
  assert(failure.sentence:find(what, 1, true), failure.sentence)
end

-- A refused assignment, of every property of every class with everything that a script has: its sentence names class and
-- property, what was given and what is wanted in words of Lua, and the model is as before.
local model = plinth.Model()
local foreign = tessel.internal.ext.ConfigStore(model)
local values = {["a function"] = function() end, ["the number 1.5"] = 1.5, ["the string 'odd'"] = "odd",
  ["a table with names"] = {odd = 1}, ["a list of 2 booleans"] = {true, false}, ["true"] = true,
  ["an object of the class 'tessel.internal.ext.ConfigStore'"] = foreign}
local refusals = 0
local function speaksLua(raised)
  assert(not raised.identifier:find("Kestrel:array", 1, true), raised.sentence)
  for _, word in ipairs({"CorvidFactory", " scalar", " vector", "int32", "double", "char", "struct'", "cell", "logical"}) do
    assert(not raised.sentence:find(word, 1, true), raised.sentence)
  end
end
local function refuse(object, property, given, value)
  local succeeded, raised = pcall(function() object[property] = value end)
  if succeeded then return end
  refusals = refusals + 1
  local sentence = raised.sentence
  local class = host.class(object)
  assert(sentence:find("Property '" .. property .. "' of '" .. class .. "': ", 1, true), sentence)
  speaksLua(raised)
  if raised.identifier == "Kestrel:class:WrongType" and sentence:find("Expected") then
    assert(sentence:find(", not " .. given .. ".", 1, true), sentence)
  end
end
for _, name in ipairs({"data", "expr", "runtime", "schema"}) do
  local package = tessel.internal.config[name]
  for _, class in ipairs(host.classes(package)) do
    local made, object = pcall(function() return package[class](model) end)
    if not made then made, object = pcall(function() return package[class]() end) end
    for _, property in ipairs(made and type(object) == "userdata" and host.properties(object) or {}) do
      for given, value in pairs(values) do refuse(object, property, given, value) end
      refuse(object, property, "nil", nil)
    end
  end
end
assert(refusals > 1000, refusals)
values["a list of 2 strings"], values["an empty list of strings"] = {"ROLE", "OWNER"}, host.array("string", {})
refusals = 0
local function called(method, ...)
  local succeeded, raised = pcall(method, ...)
  if succeeded then return end
  refusals = refusals + 1
  speaksLua(raised)
end
local callees = {model, model:beginTransaction(), foreign, runtime.PerspectiveState(model).Members, foreign.Profiles,
  foreign:metaClass(), foreign:createIntoProfiles({Id = "x"}), tessel.internal.util.DocRef()}
for _, object in ipairs(callees) do
  for _, name in ipairs(host.methods(object)) do
    for _, value in pairs(values) do
      called(object[name], value)
      if name ~= "destroy" then
        called(object[name], object, value)
        called(object[name], object, value, value)
      end
    end
    called(object[name])
    called(object[name], nil, nil)
  end
end
for _, class in ipairs({runtime.TagType, runtime.TagState, tessel.internal.util.DocRef, plinth.Model, runtime.TagType.getLiteral}) do
  for _, value in pairs(values) do
    called(class, value)
    called(class, model, value, value)
  end
end
assert(refusals > 1000, refusals)
local tag = runtime.TagState(model)
local literals = check.raises("Kestrel:class:WrongType", function() tag.Type = "NONE" end)
check.equal(literals.sentence, "WrongType: Property 'Type' of 'tessel.internal.config.runtime.TagState': Expected one of " ..
  "'GENERIC', 'PRODUCT', 'OWNER', 'SUPPORT_PACKAGE', 'ROLE', not the string 'NONE'.")
