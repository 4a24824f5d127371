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
