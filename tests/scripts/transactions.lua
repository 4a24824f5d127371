-- Transactions commit as a whole or not at all.
local check = require("check")
local runtime, ext = tessel.internal.config.runtime, tessel.internal.ext
local model = plinth.Model()
local state = runtime.ConfigurationState(model, {Params = {{Key = "a"}}})
local param = state.Params:get("a")

-- A function in a transaction: its result comes back, its changes stay.
check.equal(model:transaction(function()
  param.TypeName = "double"
  return param.TypeName
end), "double")

-- All results come back as they are, whatever they are; they can't undo what has been done.
local itself = setmetatable({}, {__index = error})
itself.itself, itself[1] = itself, 1
local results = table.pack(model:transaction(function()
  param.TypeName = "kept"
  return itself, nil, coroutine.running(), "\xff", model, nil
end))
check.equal(results.n, 6)
assert(rawequal(results[1], itself) and type(results[3]) == "thread" and results[4] == "\xff" and results[5] == model)
check.equal(param.TypeName, "kept")
check.equal(select("#", model:transaction(function() end)), 0)
check.equal(select("#", model:transaction(function() return nil end)), 1)

-- One that raises: everything is as before, and the error comes back as it was raised.
local mine = {}
local succeeded, raised = pcall(function()
  model:transaction(function()
    param.Key = "z"
    state:createIntoParams({Key = "new"})
    state.GlobalMessages = {runtime.MetaMessage(model)}
    error(mine)
  end)
end)
assert(not succeeded and rawequal(raised, mine))
check.equal(param.Key, "a")
check.equal(check.join(state.Params:keys()), "a")
check.equal(#state.GlobalMessages, 0)
check.equal(model:elementCount(), 2)

-- A model's error inside, with its line.
local failure = check.raises("plinth:messages:UniquenessConstraint", function()
  model:transaction(function()
    state:createIntoParams({Key = "b"})
    state.Params:get("b").Key = "a"
  end)
end)
assert(failure.where:find("transactions.lua:47:"), failure.where)
check.equal(check.join(state.Params:keys()), "a")

-- Inner ones that fail leave the outer one going.
model:transaction(function()
  param.TypeName = "outer"
  pcall(model.transaction, model, function()
    param.TypeName = "inner"
    error("no")
  end)
  check.equal(param.TypeName, "outer")
  param.CachedCode = "kept"
end)
check.equal(param.TypeName .. param.CachedCode, "outerkept")

-- By hand.
local transaction = model:beginTransaction()
check.equal(transaction:isOpen(), true)
param.TypeName = "changed"
transaction:rollback()
check.equal(param.TypeName, "outer")
check.equal(transaction:isOpen(), false)
local ended = check.raises("plinth:messages:TransactionEnded", transaction.commit, transaction)
assert(ended.sentence:find("has ended already"), ended.sentence)
transaction = model:beginTransaction()
param.TypeName = "committed"
transaction:commit()
check.equal(param.TypeName, "committed")

do
  local scope <close> = model:beginTransaction()
  param.TypeName = "lost"
end
check.equal(param.TypeName, "committed", "a block that ends without a commit takes back what it did")
pcall(function()
  local scope <close> = model:beginTransaction()
  param.TypeName = "lost"
  error("no")
end)
check.equal(param.TypeName, "committed")

local outer, inner = model:beginTransaction(), model:beginTransaction()
param.TypeName = "lost"
check.raises("plinth:messages:TransactionNotInnermost", outer.commit, outer)
for _, ending in ipairs({"rollback", "close"}) do
  check.raises("plinth:messages:TransactionNotInnermost", outer[ending], outer)
  check.equal(inner:isOpen(), true)
end
inner:commit()
outer:rollback()
check.equal(param.TypeName, "committed")

-- An outer one can't be ended from within: what follows inside would escape from being taken back.
outer = model:beginTransaction()
check.raises("plinth:messages:TransactionNotInnermost", model.transaction, model, function()
  param.TypeName = "in"
  outer:rollback()
  param.TypeName = "after"
end)
check.equal(param.TypeName, "committed")
outer:rollback()

-- An outer one that is let go of ends when the inner ones have ended, whatever they were.
outer, inner = model:beginTransaction(), nil
param.TypeName = "outer"
local middle = model:beginTransaction()
inner = model:beginTransaction()
param.TypeName = "inner"
outer, middle = nil, nil
host.census()
check.equal(inner:isOpen(), true)
check.equal(param.TypeName, "inner")
inner:commit()
check.equal(param.TypeName, "committed")
outer = model:beginTransaction()
model:transaction(function()
  outer = nil
  host.census()
  param.TypeName = "within"
end)
check.equal(param.TypeName, "committed")

-- Elements that a rollback takes away are named errors; those that it brings back live again.
local gone
pcall(function()
  model:transaction(function()
    gone = ext.ConfigEntry(model, {Key = "x"})
    param:destroy()
    error("no")
  end)
end)
check.equal(host.isvalid(gone), false)
check.raises("Kestrel:class:InvalidHandle", function() return gone.Key end)
check.equal(host.isvalid(param), true)
check.equal(state.Params:get("a"), param)
