"""Pretty printers for gdb: handles as the element they name, UUIDs, reflective values, UTF-16 strings.

    (gdb) source tools/gdb/tessel.py

Printers look only at fields, so they work on a core file too. What they cannot read they leave to gdb.
"""

import gdb
import gdb.printing


def uuid_text(uuid):
    """The usual lower-case form of a boost::uuids::uuid."""
    digits = "".join("%02x" % (int(uuid["data"][i]) & 0xFF) for i in range(16))
    return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))


def utf16_text(pointer, length):
    """Text of `length` code units, or None where the memory cannot be read."""
    if length == 0:
        return ""
    try:
        memory = gdb.selected_inferior().read_memory(int(pointer), 2 * length)
    except gdb.MemoryError:
        return None
    return bytes(memory).decode("utf-16-le", errors="replace")


def derives_from(value_type, name):
    """Whether a class type is the class `name` or has it among its first bases."""
    value_type = value_type.strip_typedefs()
    while value_type.code == gdb.TYPE_CODE_STRUCT:
        if value_type.name == name:
            return True
        bases = [field for field in value_type.fields() if field.is_base_class]
        if not bases:
            return False
        value_type = bases[0].type.strip_typedefs()
    return False


def count_of(impl):
    """The number in an element's atomic reference count."""
    count = impl["m_refCount"]
    for name in ("_M_i", "_M_base"):
        try:
            count = count[name]
        except gdb.error:
            pass
    try:
        return int(count)
    except gdb.error:
        return int(count["_M_i"])


def state_bits():
    """The bits of an element's state by name, as the program was compiled with them."""
    fields = gdb.lookup_type("plinth::ElementImpl::State").fields()
    return {field.name.rpartition("::")[2]: field.enumval for field in fields}


def state_of(impl):
    """An element's life in a word or two."""
    state = int(impl["m_state"])
    bits = state_bits()
    if count_of(impl) >= int(impl["REFCOUNT_DELETING"]):
        return "being deleted"
    if state & bits["PROXY"]:
        return "proxy"
    if int(impl["m_live"]):
        return "live"
    if state & bits["DESTROYED"]:
        return "destroyed"
    return "dead" if state & bits["ANNOUNCED"] else "not announced yet"


class HandlePrinter:
    """Any plinth::Handle: class, UUID, state and count of what it names; the implementation as its child."""

    def __init__(self, value):
        self.impl = value["m_impl"]

    def to_string(self):
        if int(self.impl) == 0:
            return "empty handle"
        impl = self.impl.dereference()
        name = str(self.impl.dynamic_type.target())
        name = name[: -len("Impl")].rstrip(":") if name.endswith("Impl") else name
        return "%s {%s} %s, %d references" % (name, uuid_text(impl["m_uuid"]), state_of(impl), count_of(impl))

    def children(self):
        if int(self.impl) != 0:
            yield "impl", self.impl.cast(self.impl.dynamic_type)


class UuidPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "{%s}" % uuid_text(self.value)


class U16StringPrinter:
    """std::u16string, for a gdb that does not come with the printers of the standard library."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return utf16_text(self.value["_M_dataplus"]["_M_p"], int(self.value["_M_string_length"]))

    def display_hint(self):
        return "string"


def content_type_of(functions):
    """The C++ type that a value's functions are made for, read off the name of its deleter; None where it has none."""
    name = functions.dereference()["deleter"].format_string(symbols=True, raw=True)
    start = name.find("genericDeleter<")
    end = name.rfind(">(")
    if start < 0 or end < start:
        return None
    try:
        return gdb.lookup_type(name[start + len("genericDeleter<"):end].strip())
    except gdb.error:
        return None


class ValuePrinter:
    """plinth::Value: the name of its meta type, and its content."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        meta_type = self.value["m_meta"]["m_type"]
        if int(meta_type) == 0:
            return "value of no type"
        name = meta_type.dereference()["m_name"]
        text = utf16_text(name["_M_dataplus"]["_M_p"], int(name["_M_string_length"]))
        return "value of %s%s" % (text, "" if int(self.value["m_content"]) else ", no content")

    def children(self):
        if int(self.value["m_content"]) == 0:
            return
        functions = self.value["m_functions"]
        content = content_type_of(functions) if int(functions) else None
        if content is None:
            yield "content", self.value["m_content"]
        else:
            yield "content", self.value["m_content"].cast(content.pointer()).dereference()


class TesselPrinters(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("tessel_config_datamodel", [])

    def __call__(self, value):
        value_type = value.type
        if value_type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
            value_type = value.type
        value_type = value_type.unqualified().strip_typedefs()
        if value_type.code != gdb.TYPE_CODE_STRUCT or value_type.name is None:
            return None
        try:
            if value_type.name == "boost::uuids::uuid":
                return UuidPrinter(value)
            if value_type.name == "plinth::Value":
                return ValuePrinter(value)
            if value_type.name.startswith("std::") and "basic_string<char16_t" in value_type.name.split(",")[0]:
                return U16StringPrinter(value)
            if derives_from(value_type, "plinth::Handle"):
                return HandlePrinter(value)
        except gdb.error:
            return None
        return None


gdb.printing.register_pretty_printer(gdb.current_objfile(), TesselPrinters(), replace=True)
