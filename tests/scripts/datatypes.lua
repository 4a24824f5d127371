-- Value datatypes: made without a model, compared by content, copied with each assignment.
local check = require("check")
local data, schema, util = tessel.internal.config.data, tessel.internal.config.schema, tessel.internal.util

local one, two = data.EnumOption(), data.EnumOption()
assert(one == two and not rawequal(one, two) and one.Enabled == true and one.DisplayValue == "")
one.Value = "a"
assert(one ~= two and two < one and not (one < two))
two.Value = "a"
assert(one == two)
two.Enabled = false
assert(two < one, "false comes first")

local entry = data.CompositeEntry()
entry.Field, entry.Code = "f", "1 + 1"
check.equal(entry.Field .. entry.Code .. entry.Bytes, "f1 + 1")
check.raises("Kestrel:class:NotImplemented", entry.getValue, entry)

local node = schema.GlobalNodeRef()
node.Key, node.Ordinal = "k", 7
check.equal(node.Key .. node.Ordinal, "k7")
check.raises("Kestrel:class:ValueOutOfRange", function() node.Ordinal = -1 end)
local eval = schema.EvalDef()
eval.Constant = 1
check.equal(eval.Constant, true)
check.raises("Kestrel:class:WrongArgumentCount", schema.ControllerDef, "x")

local definition = schema.CategoryDef(plinth.Model())
definition.Contents = {node, node}
check.equal(definition.Contents[2], node)
node.Key = "other"
check.equal(definition.Contents[1].Key, "k")
local kind = util.FileType()
kind.Pattern = "*.txt"
local file = data.FileParamData(plinth.Model(), {AllowedFileTypes = {kind}})
check.equal(file.AllowedFileTypes[1].Pattern, "*.txt")
