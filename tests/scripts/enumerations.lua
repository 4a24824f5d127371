-- Enumerations are used by the texts of their literals.
local check = require("check")
local expr, runtime, schema = tessel.internal.config.expr, tessel.internal.config.runtime, tessel.internal.config.schema
local model = plinth.Model()

local operation = expr.NumericOperation(model)
check.equal(operation.StaticType, "NUMBER")
operation.Operator = "PLUS"
check.equal(operation.Operator, "PLUS")
operation.Operator = expr.Operator.MINUS
check.equal(operation.Operator, "MINUS")
check.equal(expr.Operator.getValue("MESSAGE"), 20)
check.equal(expr.Operator(1), "EQ")
check.equal(expr.Operator("XOR"), "XOR")
check.equal(expr.Operator.getLiteral("XOR"), "XOR")
check.equal(expr.Operator.getPublicIdentifier("XOR"), "XOR")
check.equal(expr.Operator.getLiteral(expr.Operator(21)), "")

check.refused("Kestrel:class:WrongType", model, function() return operation.Operator end,
  function() operation.Operator = "POWER" end)
check.refused("Kestrel:class:WrongType", model, function() return operation.Operator end,
  function() operation.Operator = "plus" end)
check.refused("Kestrel:class:WrongType", model, function() return operation.Operator end,
  function() operation.Operator = 11 end)
check.raises("Kestrel:class:NoSuchMember", function() return expr.Operator.POWER end)
check.raises("Kestrel:class:WrongType", function() return expr.Operator("POWER") end)

-- On a property that is asked for as a member, in whichever class it is declared.
local constant = expr.NumericConstant(model)
constant.ExprType = "REFERENCE"
check.equal(constant.ExprType, "REFERENCE")

-- Given in a table of initial values, by text or as a member.
check.equal(runtime.TagState(model, {Type = "ROLE"}).Type, "ROLE")
check.equal(runtime.TagState(model, {Type = runtime.TagType.OWNER}).Type, "OWNER")
local failure = check.raises("Kestrel:class:WrongType", function() runtime.TagState(model, {Type = "NOBODY"}) end)
assert(failure.sentence:find("Property 'Type'") and failure.sentence:find("'NOBODY'"), failure.sentence)
check.equal(schema.UserFacingStringEscape.getValue("ESCAPE_MESSAGES"), 2)
