"""JSON Schema for a hundred thousand values: a schema becomes one Python function, a hundred times as fast as jsonschema's
walk. It knows the keywords that docs/schema/ has and refuses others, and tells only whether a value is valid; check-json
has jsonschema say the same of a line of each shape.
"""

import json
import re


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


IS = {
    "array": lambda value: isinstance(value, list),
    "boolean": lambda value: isinstance(value, bool),
    "integer": lambda value: is_number(value) and value == int(value),
    "null": lambda value: value is None,
    "number": is_number,
    "object": lambda value: isinstance(value, dict),
    "string": lambda value: isinstance(value, str),
}
WORDS = {"$schema", "$defs", "$comment", "title", "description", "then", "else"}  # say nothing by themselves


def same(a, b):
    """As JSON has it, of what holds nothing: 1 is 1.0, and neither is true."""
    return a == b and isinstance(a, bool) is isinstance(b, bool)


def only(kind, holds):
    """Keywords for one kind of value say nothing of others."""
    return lambda value: holds(value) if IS[kind](value) else True


class Compiler:
    """Of the schemas of a folder, by file name."""

    def __init__(self, schemas):
        self.schemas = schemas
        self.made = {}

    def of(self, file, pointer=""):
        """The function for a place in a file; a schema may refer to itself."""
        place = (file, pointer)
        if place not in self.made:
            self.made[place] = lambda value: self.made[place](value)  # until it is there
            schema = self.schemas[file]
            for name in pointer.split("/")[1:]:
                schema = schema[name]
            self.made[place] = self.compiled(schema, file)
        return lambda value: self.made[place](value)

    def compiled(self, schema, file):
        if isinstance(schema, bool):
            return lambda value: schema
        parts = [getattr(self, "do_" + word.strip("$"))(schema[word], schema, file) for word in schema if word not in WORDS]
        parts = [part for part in parts if part is not None]
        return parts[0] if len(parts) == 1 else lambda value: all(part(value) for part in parts)

    def each(self, schemas, file):
        return [self.compiled(schema, file) for schema in schemas]

    def do_ref(self, to, _, file):
        other, _, pointer = to.partition("#")
        return self.of(other or file, pointer)

    def do_type(self, names, _, __):
        if isinstance(names, str):
            return IS[names]
        kinds = [IS[name] for name in names]
        return lambda value: any(is_kind(value) for is_kind in kinds)

    def do_const(self, wanted, _, __):
        return self.do_enum([wanted], _, __)

    def do_enum(self, all_of_them, _, __):
        assert not any(isinstance(one, (dict, list)) for one in all_of_them)
        return lambda value: any(same(value, one) for one in all_of_them)

    def do_allOf(self, schemas, _, file):
        parts = self.each(schemas, file)
        return lambda value: all(part(value) for part in parts)

    def do_anyOf(self, schemas, _, file):
        parts = self.each(schemas, file)
        return lambda value: any(part(value) for part in parts)

    def do_oneOf(self, schemas, _, file):
        parts = self.each(schemas, file)
        return lambda value: sum(part(value) for part in parts) == 1

    def do_if(self, condition, schema, file):
        test, then, otherwise = self.each((condition, schema.get("then", True), schema.get("else", True)), file)
        return lambda value: then(value) if test(value) else otherwise(value)

    def do_properties(self, members, schema, file):
        known = {name: self.compiled(of, file) for name, of in members.items()}
        more = self.compiled(schema.get("additionalProperties", True), file)
        return only("object", lambda value: all(known.get(name, more)(member) for name, member in value.items()))

    def do_additionalProperties(self, _, schema, file):
        return None if "properties" in schema else self.do_properties({}, schema, file)

    def do_required(self, names, _, __):
        return only("object", lambda value: all(name in value for name in names))

    def do_dependentRequired(self, needs, _, __):
        return only("object", lambda value: all(name in value for of, names in needs.items() if of in value for name in names))

    def do_minProperties(self, count, _, __):
        return only("object", lambda value: len(value) >= count)

    def do_items(self, schema, _, file):
        part = self.compiled(schema, file)
        return only("array", lambda value: all(map(part, value)))

    def do_minItems(self, count, _, __):
        return only("array", lambda value: len(value) >= count)

    def do_maxItems(self, count, _, __):
        return only("array", lambda value: len(value) <= count)

    def do_uniqueItems(self, wanted, _, __):
        return only("array", lambda value: not wanted or len({json.dumps(entry) for entry in value}) == len(value))

    def do_minLength(self, count, _, __):
        return only("string", lambda value: len(value) >= count)

    def do_maxLength(self, count, _, __):
        return only("string", lambda value: len(value) <= count)

    def do_pattern(self, text, _, __):
        search = re.compile(text).search
        return only("string", lambda value: search(value) is not None)

    def do_minimum(self, least, _, __):
        return only("number", lambda value: value >= least)

    def do_maximum(self, most, _, __):
        return only("number", lambda value: value <= most)

    def do_exclusiveMinimum(self, below, _, __):
        return only("number", lambda value: value > below)
