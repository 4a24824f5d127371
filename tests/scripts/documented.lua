-- The examples of docs/scripting.md run as they stand, one after the other.
local file <close> = assert(io.open(documentation .. "/scripting.md"))
local examples = {}
for example in file:read("a"):gmatch("```lua\n(.-)```") do table.insert(examples, example) end
assert(#examples > 5)
assert(load(table.concat(examples), "=scripting.md"))()
