"""A JSON schema as HTML: a table for the object itself and for each of its definitions, with members, types, whether they have
to be there, and what they say. Links lead to the definitions of this schema and of others."""

import html
import json


def page_name(file):
    return "schema_" + file.name.split(".")[0]


def code(value):
    return f"<code>{html.escape(json.dumps(value))}</code>"


class schema_page:
    """The page of one schema; `folder` has the others."""

    def __init__(self, file):
        self.file = file
        self.schema = json.loads(file.read_text())

    def resolve(self, reference):
        """The schema that a reference leads to, its name, and its address."""
        file, _, path = reference.partition("#/$defs/")
        at = self if not file else schema_page(self.file.with_name(file))
        if not path:
            return at.schema, at.file.name, f"{page_name(at.file)}.html"
        return at.schema["$defs"][path], path, f"{page_name(at.file)}.html#def_{path}"

    def type_of(self, schema):
        """What a value may be, in HTML."""
        if "$ref" in schema:
            _, name, address = self.resolve(schema["$ref"])
            return f'<a href="{address}">{html.escape(name)}</a>'
        if "const" in schema:
            return code(schema["const"])
        if "enum" in schema:
            return ", ".join(map(code, schema["enum"]))
        for choice in ("oneOf", "anyOf"):
            if choice in schema:
                return " or ".join(self.type_of(one) for one in schema[choice])
        kinds = schema.get("type", "anything")
        kinds = kinds if isinstance(kinds, list) else [kinds]
        return " or ".join(self.kind_of(kind, schema) for kind in kinds)

    def kind_of(self, kind, schema):
        if kind == "array":
            most = f', at most {schema["maxItems"]}' if "maxItems" in schema else ""
            inside = f' of {self.type_of(schema["items"])}' if "items" in schema else ""
            return f"array{inside}{most}"
        if kind == "object" and isinstance(schema.get("additionalProperties"), dict):
            return f'object of {self.type_of(schema["additionalProperties"])}'
        if kind in ("integer", "number") and ("minimum" in schema or "maximum" in schema):
            return f"{kind}, " + " ".join(f'{word} {schema[key]}' for word, key in (("from", "minimum"), ("to", "maximum"))
                                          if key in schema)
        if kind == "string" and "pattern" in schema:
            return f'string like <code>{html.escape(schema["pattern"])}</code>'
        return kind

    def says(self, schema):
        if "description" in schema or "$ref" not in schema:
            return schema.get("description", "")
        return self.says(self.resolve(schema["$ref"])[0])

    def inner_objects(self, schema):
        """The objects that a member holds without a name of their own, with what stands behind its name for them."""
        if "properties" in schema:
            yield schema, "."
        if isinstance(schema.get("items"), dict):
            for inner, path in self.inner_objects(schema["items"]):
                yield inner, "[]" + path
        for choice in schema.get("oneOf", []) + schema.get("anyOf", []):
            yield from self.inner_objects(choice)

    def rows(self, schema, before=""):
        required = schema.get("required", [])
        for name, member in schema.get("properties", {}).items():
            always = "always" if name in required else ""
            yield (f"<tr><td><code>{html.escape(before + name)}</code></td><td>{self.type_of(member)}</td>"
                   f"<td>{always}</td><td>{html.escape(self.says(member))}</td></tr>")
            for inner, path in self.inner_objects(member):
                yield from self.rows(inner, before + name + path)

    def kinds(self, schema):
        """What an object is besides, by the values of its members."""
        for rule in schema.get("allOf", []):
            if "$ref" in rule:
                yield f"<li>it is also {self.type_of(rule)}</li>"
            elif "if" in rule and "then" in rule:
                told = ", ".join(f"<code>{html.escape(name)}</code> is {self.type_of(value)}"
                                 for name, value in rule["if"].get("properties", {}).items())
                then = rule["then"]
                what = self.type_of(then) if "$ref" in then else ", ".join(
                    f"<code>{html.escape(name)}</code>: {self.type_of(value) if value else 'there'}"
                    for name, value in then.get("properties", {}).items())
                if told and what:
                    yield f"<li>where {told}: {what}</li>"

    def section(self, title, anchor, schema):
        yield f'<h2 id="{anchor}">{html.escape(title)}</h2>'
        if "description" in schema:
            yield f'<p>{html.escape(schema["description"])}</p>'
        if "properties" not in schema or "$ref" in schema:
            yield f"<p>{self.type_of(schema)}</p>"
        rows = list(self.rows(schema))
        if rows:
            yield ('<div class="wide"><table class="members"><tr><th>member</th><th>type</th><th>there</th><th>what it says</th>'
                   "</tr>")
            yield from rows
            yield "</table></div>"
        kinds = list(self.kinds(schema))
        if kinds:
            yield f"<ul>{''.join(kinds)}</ul>"

    def html(self):
        yield f'<p>{html.escape(self.schema.get("title", ""))}. <a href="schema/{self.file.name}">The schema itself</a>.</p>'
        if "type" in self.schema:
            yield from self.section("The object", "object", self.schema)
        for name, definition in self.schema.get("$defs", {}).items():
            yield from self.section(name, f"def_{name}", definition)
