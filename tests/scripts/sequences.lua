-- Sequences of elements are arrays, read and assigned as a whole.
local check = require("check")
local expr, runtime = tessel.internal.config.expr, tessel.internal.config.runtime
local model = plinth.Model()

local sum = expr.NumericOperation(model)
check.equal(#sum.Operands, 0)
check.equal(host.class(sum.Operands), "tessel.internal.config.expr.ExprValue")

local one, two, name = expr.NumericConstant(model, {Value = 1}), expr.NumericConstant(model, {Value = 2}), expr.Ref(model)
sum.Operands = {one}
check.equal(#sum.Operands, 1)
check.equal(host.class(sum.Operands), "tessel.internal.config.expr.NumericConstant")
sum.Operands = {one, name, two}
check.equal(#sum.Operands, 3)
assert(sum.Operands[1] == one and sum.Operands[2] == name and sum.Operands[3] == two)
assert(host.isa(sum.Operands[2], "tessel.internal.config.expr.Ref"), "members are what they are")
check.equal(one:container(), sum)

-- The same members in another order, and back by the array that was read.
local before = sum.Operands
sum.Operands = {two, one, name}
check.equal(sum.Operands[1], two)
sum.Operands = before
check.equal(sum.Operands[1], one)

-- What is left out is let go of.
sum.Operands = {two}
check.equal(one:container(), nil)
sum.Operands = two
check.equal(#sum.Operands, 1)
sum.Operands = {}
check.equal(two:container(), nil)
sum.Operands = nil
check.equal(#sum.Operands, 0)

-- A refused member leaves all as it was.
sum.Operands = {one, two}
local function members() return #sum.Operands end
check.refused("Kestrel:class:WrongType", model, members, function() sum.Operands = {one, model} end)
check.refused("Kestrel:class:WrongType", model, members, function() sum.Operands = {name, runtime.ParamState} end)
check.refused("Kestrel:class:WrongType", model, members, function() sum.Operands = {1, 2} end)
check.refused("plinth:messages:CannotContainAncestor", model, members, function() sum.Operands = {one, sum} end)
local foreign = expr.Ref(plinth.Model())
check.refused("plinth:messages:CannotCreateCrossModelAssociation", model, members,
  function() sum.Operands = {name, foreign} end)
check.equal(sum.Operands[1], one)
check.equal(one:container(), sum)
name:destroy()
check.refused("Kestrel:class:InvalidHandle", model, members, function() sum.Operands = {one, name} end)

-- Opposites follow.
local category, param = runtime.CategoryState(model), runtime.ParamState(model)
category.Contents = {param}
check.equal(param.Category, category)
category.Contents = {}
check.equal(param.Category, nil)

-- Ten thousand.
local many = {}
for i = 1, 10000 do many[i] = runtime.MetaMessage(model) end
local state = runtime.ConfigurationState(model)
state.GlobalMessages = many
check.equal(#state.GlobalMessages, 10000)
check.equal(state.GlobalMessages[10000], many[10000])
