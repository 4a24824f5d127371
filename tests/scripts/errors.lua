-- A model's error is an error of the script: identifier, sentence, and the line that caused it.
local check = require("check")
local runtime = tessel.internal.config.runtime
local state = runtime.ConfigurationState(plinth.Model(), {Params = {{Key = "a"}, {Key = "b"}}})

local failure = check.raises("plinth:messages:UniquenessConstraint", function()
  state.Params:get("a").Key = "b"
end)
check.equal(failure.sentence,
  "UniquenessConstraint: another element of the same map or model already bears this key; choose another key.")
assert(failure.where:find("errors.lua:7:"), failure.where)
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
assert(failure.where:find("errors.lua:29:"), failure.where)
assert("failed: " .. failure == "failed: " .. tostring(failure))

-- A value that has no form here is named.
for what, action in pairs({
  ["class or the full name of one, not nothing"] = function() plinth.Model():elements(nil) end,
  ["the text of a UUID, not 5"] = function() plinth.Model():findElement(5) end,
  ["'createIntoTags' takes a struct"] = function()
    runtime.ConfigurationState(plinth.Model()):createIntoTags({{Id = "a"}, {Id = "b"}})
  end,
}) do
  failure = check.raises("plinth:messages:InvalidValue", action)
  assert(failure.sentence:find(what, 1, true), failure.sentence)
end
