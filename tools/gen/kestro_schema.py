#!/usr/bin/env python3
"""Reads the service's declarations in schema/*.kestro.ts and writes the
client's records and action calls as C++ (Kestro::Model, Kestro::Calls).

    kestro_schema.py OUTDIR SCHEMA_FILE...

The declaration language is described at the top of schema/model.kestro.ts.
Standard library only: the build runs this on every machine it builds on.
"""

import json
import re
import sys
from dataclasses import dataclass, field
from typing import Optional

# --------------------------------------------------------------------------
# Reading

PRIMITIVES = {"string", "number", "boolean", "JSONValue", "Date", "File", "Form"}


class SchemaError(Exception):
    def __init__(self, where, message):
        super().__init__(f"{where}: {message}")


@dataclass
class Type:
    kind: str  # primitive | list | map | indirect | ref | inline
    name: str = ""  # primitive name or reference text ("Model.X", "X")
    inner: Optional["Type"] = None
    members: list = field(default_factory=list)  # for inline
    where: str = ""
    resolved: Optional["Record"] = None  # for ref and inline
    alias: Optional["Alias"] = None  # a ref to a type alias


@dataclass
class Member:
    name: str
    type: Type
    optional: bool


@dataclass
class Record:
    name: str
    space: "Space"
    members: list
    where: str
    base: Optional[str] = None
    explicit: bool = True

    @property
    def qualified(self):
        return f"{self.space.cpp}::{self.name}"


@dataclass
class Alias:
    name: str
    space: "Space"
    type: Type
    where: str


@dataclass
class Param:
    name: str
    type: Type
    optional: bool


@dataclass
class Action:
    name: str
    params: Optional[list]  # None: not declared
    result: Optional[Type]
    where: str


@dataclass
class Space:
    name: str  # "Model" or the module's name
    is_model: bool
    records: dict = field(default_factory=dict)
    aliases: dict = field(default_factory=dict)
    actions: list = field(default_factory=list)
    order: list = field(default_factory=list)  # records in naming order

    @property
    def cpp(self):
        return "Model" if self.is_model else f"Calls::{self.name}"


TOKEN = re.compile(r"\s+|//[^\n]*|/\*.*?\*/|([A-Za-z_$][A-Za-z0-9_$]*|[{}()\[\]<>:;,?.=|])", re.S)


def tokenize(text, path):
    tokens = []
    pos = 0
    line = 1
    while pos < len(text):
        match = TOKEN.match(text, pos)
        if not match:
            raise SchemaError(f"{path}:{line}", f"unexpected character {text[pos]!r}")
        if match.group(1):
            tokens.append((match.group(1), f"{path}:{line}"))
        line += text.count("\n", pos, match.end())
        pos = match.end()
    tokens.append(("<end>", f"{path}:{line}"))
    return tokens


class Parser:
    def __init__(self, tokens):
        self.tokens = tokens
        self.at = 0

    def peek(self, ahead=0):
        return self.tokens[self.at + ahead][0]

    def where(self):
        return self.tokens[self.at][1]

    def take(self, expected=None):
        text, where = self.tokens[self.at]
        if expected is not None and text != expected:
            raise SchemaError(where, f"expected {expected!r}, found {text!r}")
        self.at += 1
        return text

    def name(self):
        text, where = self.tokens[self.at]
        if not re.match(r"[A-Za-z_$]", text):
            raise SchemaError(where, f"expected a name, found {text!r}")
        self.at += 1
        return text

    def parse_file(self, spaces):
        while self.peek() != "<end>":
            keyword = self.take()
            if keyword == "namespace":
                name = self.name()
                if name != "Model":
                    raise SchemaError(self.where(), "the only namespace is Model; a service module is 'module <name>'")
                space = spaces.setdefault("Model", Space("Model", True))
            elif keyword == "module":
                name = self.name()
                space = spaces.setdefault(name, Space(name, False))
            else:
                raise SchemaError(self.tokens[self.at - 1][1], f"expected 'namespace Model' or 'module', found {keyword!r}")
            self.take("{")
            while self.peek() != "}":
                self.parse_declaration(space)
            self.take("}")

    def parse_declaration(self, space):
        where = self.where()
        if self.peek() == "export":
            self.take()
        if self.peek() == "interface":
            self.take()
            name = self.name()
            base = None
            if self.peek() == "extends":
                self.take()
                base = self.reference()
            members = self.members()
            if name in space.records or name in space.aliases:
                raise SchemaError(where, f"{name} is declared twice")
            space.records[name] = Record(name, space, members, where, base)
        elif self.peek() == "type":
            self.take()
            name = self.name()
            self.take("=")
            aliased = self.type()
            self.take(";")
            space.aliases[name] = Alias(name, space, aliased, where)
        else:
            if space.is_model:
                raise SchemaError(where, "actions belong to a module, not to Model")
            name = self.name()
            params = None
            result = None
            if self.peek() == "(":
                self.take("(")
                params = []
                while self.peek() != ")":
                    pname = self.name()
                    optional = self.peek() == "?"
                    if optional:
                        self.take()
                    self.take(":")
                    params.append(Param(pname, self.type(), optional))
                    if self.peek() == ",":
                        self.take()
                self.take(")")
                for earlier, later in zip(params, params[1:]):
                    if earlier.optional and not later.optional:
                        raise SchemaError(where, f"{name}: a required argument cannot follow an optional one")
                if len(params) > 4:
                    raise SchemaError(where, f"{name}: an action takes at most four arguments")
            if self.peek() == ":":
                self.take()
                result = self.type()
            self.take(";")
            if any(a.name == name for a in space.actions):
                raise SchemaError(where, f"the action {name} is declared twice in {space.name}")
            space.actions.append(Action(name, params, result, where))

    def members(self):
        self.take("{")
        members = []
        while self.peek() != "}":
            name = self.name()
            optional = self.peek() == "?"
            if optional:
                self.take()
            self.take(":")
            members.append(Member(name, self.type(), optional))
            if self.peek() in (";", ","):
                self.take()
        self.take("}")
        return members

    def reference(self):
        text = self.name()
        if self.peek() == ".":
            self.take()
            text += "." + self.name()
        return text

    def type(self):
        where = self.where()
        if self.peek() == "{":
            result = Type("inline", members=self.members(), where=where)
        else:
            word = self.reference()
            if word in PRIMITIVES:
                result = Type("primitive", word, where=where)
            elif word in ("Record", "Indirect"):
                self.take("<")
                if word == "Record":
                    if self.name() != "string":
                        raise SchemaError(where, "a Record's keys are strings")
                    self.take(",")
                    result = Type("map", inner=self.type(), where=where)
                else:
                    result = Type("indirect", inner=Type("ref", self.reference(), where=where), where=where)
                self.take(">")
            else:
                result = Type("ref", word, where=where)
        while self.peek() == "[":
            self.take("[")
            self.take("]")
            result = Type("list", inner=result, where=where)
        return result


# --------------------------------------------------------------------------
# Naming and resolving

def upper_first(text):
    return text[:1].upper() + text[1:]


def singular(word):
    """The item name of a list or map member: routines -> routine."""
    if word.endswith("ies") and len(word) > 4:
        return word[:-3] + "y"
    if re.search(r"(ss|x|ch|sh)es$", word):
        return word[:-2]
    if word.endswith("s") and not re.search(r"(ss|us|is)$", word) and len(word) > 2:
        return word[:-1]
    return word


def shape_of(members):
    """A comparable description of a record's shape, for telling two inline
    records with the same name apart."""
    def type_shape(t):
        if t.kind == "primitive":
            return t.name
        if t.kind in ("list", "map", "indirect"):
            return (t.kind, type_shape(t.inner))
        if t.kind == "ref":
            return ("ref", t.resolved.qualified if t.resolved else t.alias.name)
        return ("record", t.resolved.qualified)
    return tuple((m.name, m.optional, type_shape(m.type)) for m in members)


class Resolver:
    def __init__(self, spaces):
        self.spaces = spaces
        self.model = spaces.setdefault("Model", Space("Model", True))

    def run(self):
        # Explicit records keep their names; inline ones are named as they are
        # met, in declaration order, so a later clash takes the number.
        for space in self.all_spaces():
            for record in list(space.records.values()):
                self.record(record)
            for alias in space.aliases.values():
                self.type(alias.type, space, alias.name, "")
            for action in space.actions:
                for param in action.params or []:
                    self.type(param.type, space, upper_first(action.name) + "Input", param.name)
                if action.result:
                    self.type(action.result, space, upper_first(action.name) + "Result", "")
        for space in self.all_spaces():
            for record in list(space.records.values()):
                self.inherit(record, [])

    def all_spaces(self):
        return [self.model] + sorted((s for s in self.spaces.values() if not s.is_model), key=lambda s: s.name)

    def lookup(self, text, space, where):
        if "." in text:
            prefix, name = text.split(".", 1)
            if prefix != "Model":
                raise SchemaError(where, f"unknown namespace {prefix!r} (only Model.X can be named across modules)")
            target = self.model
        else:
            name = text
            target = space if (name in space.records or name in space.aliases) else self.model
        if name in target.records:
            return target.records[name], None
        if name in target.aliases:
            return None, target.aliases[name]
        raise SchemaError(where, f"unknown type {text!r}")

    def record(self, record):
        if record.name not in [r.name for r in record.space.order]:
            record.space.order.append(record)
        for member in record.members:
            self.type(member.type, record.space, record.name, member.name)

    def type(self, t, space, owner, member):
        if t.kind == "primitive":
            return
        if t.kind in ("list", "map"):
            self.type(t.inner, space, owner, singular(member))
            return
        if t.kind == "indirect":
            t.inner.resolved, alias = self.lookup(t.inner.name, space, t.where)
            if alias or not t.inner.resolved:
                raise SchemaError(t.where, "Indirect<> boxes a record")
            return
        if t.kind == "ref":
            t.resolved, t.alias = self.lookup(t.name, space, t.where)
            return
        # An inline record: owner + Member, numbered when the name is taken
        # by another shape; the same shape under the same name is one record.
        base_name = owner + upper_first(member)
        candidate = Record(base_name, space, t.members, t.where, explicit=False)
        for m in t.members:
            self.type(m.type, space, base_name, m.name)
        number = 1
        name = base_name
        while True:
            existing = space.records.get(name) or (None if name not in space.aliases else "alias")
            if existing is None:
                break
            if existing != "alias" and not existing.explicit and shape_of(existing.members) == shape_of(t.members):
                t.resolved = existing
                return
            number += 1
            name = f"{base_name}{number}"
        candidate.name = name
        space.records[name] = candidate
        space.order.append(candidate)
        t.resolved = candidate

    def inherit(self, record, seen):
        if not record.base:
            return
        if record.name in seen:
            raise SchemaError(record.where, f"{record.name} extends itself")
        base, alias = self.lookup(record.base, record.space, record.where)
        if alias or not base:
            raise SchemaError(record.where, f"{record.name} extends {record.base}, which is not a record")
        self.inherit(base, seen + [record.name])
        own = {m.name for m in record.members}
        record.members = record.members + [m for m in base.members if m.name not in own]
        record.base = None


# --------------------------------------------------------------------------
# Writing C++

CPP_KEYWORDS = set("""alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t
char32_t class compl concept const consteval constexpr constinit const_cast continue co_await co_return co_yield
decltype default delete do double dynamic_cast else enum explicit export extern false float for friend goto if
inline int long mutable namespace new noexcept not not_eq nullptr operator or or_eq private protected public
register reinterpret_cast requires return short signed sizeof static static_assert static_cast struct switch
template this thread_local throw true try typedef typeid typename union unsigned using virtual void volatile
wchar_t while xor xor_eq decode encode""".split())


def ident(name):
    """A member or function name that C++ accepts; the JSON key is unchanged."""
    name = name.replace("$", "_")
    return name + "_" if name in CPP_KEYWORDS else name


def cpp_type(t, space):
    if t.kind == "primitive":
        return {"string": "QString", "number": "double", "boolean": "bool", "JSONValue": "Kestro::JSONValue",
                "Date": "Kestro::WireDate", "File": "Kestro::WireFile", "Form": "Kestro::WireForm"}[t.name]
    if t.kind == "list":
        return f"QList<{cpp_type(t.inner, space)}>"
    if t.kind == "map":
        return f"QMap<QString, {cpp_type(t.inner, space)}>"
    if t.kind == "indirect":
        return f"Kestro::Indirect<{qualify(t.inner.resolved, space)}>"
    if t.alias:
        return qualify_alias(t.alias, space)
    return qualify(t.resolved, space)


def qualify(record, space):
    return record.name if record.space is space else f"Kestro::{record.qualified}"


def qualify_alias(alias, space):
    return alias.name if alias.space is space else f"Kestro::{alias.space.cpp}::{alias.name}"


def by_value_deps(t):
    """Records of the same namespace that a member holds by value."""
    if t.kind in ("list", "map"):
        return by_value_deps(t.inner)
    if t.kind in ("ref", "inline") and t.resolved:
        return [t.resolved]
    return []


def declaration_order(space):
    ordered, state = [], {}

    def visit(record, chain):
        if state.get(record.name) == "done":
            return
        if state.get(record.name) == "visiting":
            raise SchemaError(record.where, "records that contain each other need Indirect<>: " + " -> ".join(chain + [record.name]))
        state[record.name] = "visiting"
        for member in record.members:
            for dep in by_value_deps(member.type):
                if dep.space is space:
                    visit(dep, chain + [record.name])
        state[record.name] = "done"
        ordered.append(record)

    for record in space.order:
        visit(record, [])
    return ordered


def result_of(action, space):
    if action.result is None:
        if action.name.endswith("Action"):
            return "Kestro::Model::ActionOutcome"
        return "Kestro::JSONValue"
    return cpp_type(action.result, space)


def sample(t, depth=0):
    """A value of the type, every optional member present, for tests."""
    if t.kind == "primitive":
        return {"string": "text", "number": 2.5, "boolean": True, "JSONValue": {"any": [1, "x", None]},
                "Date": {"$date": "2024-02-29T23:59:59.500Z"},
                "File": {"$file": {"name": "a.txt", "type": "text/plain", "data": "aGVsbG8="}},
                "Form": {"$form": [["name", "value"]]}}[t.name]
    if t.kind == "list":
        return [] if depth > 3 else [sample(t.inner, depth + 1)]
    if t.kind == "map":
        return {} if depth > 3 else {"first": sample(t.inner, depth + 1)}
    if t.kind == "indirect":
        return record_sample(t.inner.resolved, depth + 1)
    if t.alias:
        return sample(t.alias.type, depth)
    return record_sample(t.resolved, depth)


def record_sample(record, depth=0):
    return {m.name: sample(m.type, depth + 1) for m in record.members}


def is_free_form(t):
    if t.kind == "primitive":
        return t.name == "JSONValue"
    return t.kind == "ref" and t.alias is not None and is_free_form(t.alias.type)


def cpp_string(text):
    return json.dumps(text)


class Writer:
    def __init__(self, spaces, outdir):
        self.spaces = spaces
        self.outdir = outdir
        self.files = {}

    def header_prelude(self):
        return ["// Generated by tools/gen/kestro_schema.py from schema/. Do not edit.", "#pragma once", ""]

    def space_header(self, space, includes):
        out = self.header_prelude() + [f"#include {i}" for i in includes] + [""]
        out += [f"namespace Kestro::{space.cpp} {{", ""]
        ordered = declaration_order(space)
        for record in ordered:
            out.append(f"struct {record.name};")
        out.append("")
        for alias in space.aliases.values():
            out.append(f"using {alias.name} = {cpp_type(alias.type, space)};")
        out.append("")
        for record in ordered:
            out.append(f"struct {record.name} {{")
            for m in record.members:
                ctype = cpp_type(m.type, space)
                if m.optional:
                    ctype = f"std::optional<{ctype}>"
                init = " = 0" if ctype == "double" else " = false" if ctype == "bool" else ""
                out.append(f"    {ctype} {ident(m.name)}{init};")
            out.append("")
            out.append(f"    static {record.name} decode(const QJsonValue& json, Kestro::CodingPath& path);")
            out.append("    QJsonValue encode() const;")
            out.append(f"    bool operator==(const {record.name}&) const = default;")
            out.append("};")
            out.append(f"size_t qHash(const {record.name}& value, size_t seed = 0);")
            out.append("")
        out.append(f"}} // namespace Kestro::{space.cpp}")
        return out

    def space_source(self, space, header):
        out = ["// Generated by tools/gen/kestro_schema.py from schema/. Do not edit.", f'#include "{header}"', "",
               '#include "service/Hashing.h"', "", "using namespace Qt::Literals::StringLiterals;", "",
               f"namespace Kestro::{space.cpp} {{", ""]
        for record in declaration_order(space):
            n = record.name
            out.append(f"{n} {n}::decode(const QJsonValue& json, Kestro::CodingPath& path)")
            out.append("{")
            out.append("    const QJsonObject object = Kestro::recordObject(json, path);")
            out.append(f"    {n} out;")
            for m in record.members:
                ctype = cpp_type(m.type, space)
                getter = "optionalField" if m.optional else "field"
                out.append(f"    out.{ident(m.name)} = Kestro::{getter}<{ctype}>(object, {cpp_string(m.name)}_L1, path);")
            out.append("    return out;")
            out.append("}")
            out.append("")
            out.append(f"QJsonValue {n}::encode() const")
            out.append("{")
            out.append("    QJsonObject object;")
            for m in record.members:
                out.append(f"    Kestro::putField(object, {cpp_string(m.name)}_L1, {ident(m.name)});")
            out.append("    return object;")
            out.append("}")
            out.append("")
            out.append(f"size_t qHash(const {n}& value, size_t seed)")
            out.append("{")
            for m in record.members:
                out.append(f"    seed = Kestro::hashPart(seed, value.{ident(m.name)});")
            out.append("    return seed;")
            out.append("}")
            out.append("")
        out.append(f"}} // namespace Kestro::{space.cpp}")
        return out

    def module_extras_header(self, space):
        out = [f"namespace Kestro::Calls::{space.name} {{", ""]
        out.append("// Each action's module and name as the service knows them, and its result.")
        out.append("namespace actions {")
        for action in space.actions:
            out.append(f"struct {ident(action.name)} {{")
            out.append(f'    static constexpr QLatin1StringView module{{"{space.name}"}};')
            out.append(f'    static constexpr QLatin1StringView action{{"{action.name}"}};')
            out.append(f"    using Result = {result_of(action, space)};")
            out.append("};")
        out.append("} // namespace actions")
        out.append("")
        for action in space.actions:
            result = result_of(action, space)
            if action.params is None:
                out.append(f"// {action.name}: arguments not declared; each one a JSONValue.")
                out.append(f"QCoro::Task<{result}> {ident(action.name)}(QList<Kestro::JSONValue> args = {{}});")
            else:
                params = []
                for p in action.params:
                    default = " = Kestro::Arg::absent()" if p.optional else ""
                    params.append(f"Kestro::Arg {ident(p.name)}{default}")
                out.append(f"QCoro::Task<{result}> {ident(action.name)}({', '.join(params)});")
        out.append("")
        out.append(f"}} // namespace Kestro::Calls::{space.name}")
        return out

    def module_extras_source(self, space):
        out = [f"namespace Kestro::Calls::{space.name} {{", ""]
        for action in space.actions:
            result = result_of(action, space)
            name = ident(action.name)
            if action.params is None:
                out.append(f"QCoro::Task<{result}> {name}(QList<Kestro::JSONValue> args)")
                out.append("{")
                out.append(f"    return Kestro::Client::shared().fetch<{result}>(QString(actions::{name}::module), "
                           f"QString(actions::{name}::action), std::move(args));")
            else:
                params = ", ".join(f"Kestro::Arg {ident(p.name)}" for p in action.params)
                values = ", ".join(f"{ident(p.name)}.value()" for p in action.params)
                out.append(f"QCoro::Task<{result}> {name}({params})")
                out.append("{")
                out.append(f"    return Kestro::Client::shared().fetch<{result}>(QString(actions::{name}::module), "
                           f"QString(actions::{name}::action), {{{values}}});")
            out.append("}")
            out.append("")
        out.append(f"}} // namespace Kestro::Calls::{space.name}")
        return out

    def write(self):
        model = self.spaces["Model"]
        self.files["calls/Model.h"] = self.space_header(
            model, ["<QJsonObject>", "<QJsonValue>", "<QList>", "<QMap>", "<QString>", "<optional>",
                    '"service/Codec.h"'])
        self.files["calls/Model.cpp"] = self.space_source(model, "calls/Model.h")
        modules = sorted((s for s in self.spaces.values() if not s.is_model), key=lambda s: s.name)
        for space in modules:
            header = f"calls/{space.name}.h"
            lines = self.space_header(space, ['"calls/Model.h"', '"service/Arg.h"', '"service/Client.h"'])
            lines[lines.index(f"}} // namespace Kestro::{space.cpp}")] = f"}} // namespace Kestro::{space.cpp}\n"
            lines += [""] + self.module_extras_header(space)
            self.files[header] = lines
            source = self.space_source(space, header) + [""] + self.module_extras_source(space)
            self.files[f"calls/{space.name}.cpp"] = source
        self.files["calls/Calls.h"] = self.header_prelude() + [f'#include "calls/{s.name}.h"' for s in modules]
        self.files["calls/Catalog.cpp"] = self.catalog(modules)
        self.files["calls/Samples.cpp"] = self.samples(modules)
        for path, lines in self.files.items():
            text = "\n".join(lines) + "\n"
            target = f"{self.outdir}/{path}"
            try:
                with open(target) as existing:
                    if existing.read() == text:
                        continue  # unchanged: keep the time stamp, skip the rebuild
            except FileNotFoundError:
                pass
            with open(target, "w") as handle:
                handle.write(text)

    def catalog(self, modules):
        out = ["// Generated by tools/gen/kestro_schema.py from schema/. Do not edit.", '#include "calls/Calls.h"',
               '#include "service/ActionCatalog.h"', "", "namespace Kestro {", "",
               "const QList<ActionEntry>& actionCatalog()", "{", "    static const QList<ActionEntry> entries = {"]
        for space in modules:
            for action in space.actions:
                result = result_of(action, None)  # qualified in full
                display = result.split("::")[-1]
                out.append(f'        {{"{space.name}"_L1, "{action.name}"_L1, "{display}"_L1, '
                           f"&callEncoded<{result}>}},")
        out += ["    };", "    return entries;", "}", "", "} // namespace Kestro"]
        out.insert(4, "using namespace Qt::Literals::StringLiterals;\n")
        return out

    def samples(self, modules):
        out = ["// Generated by tools/gen/kestro_schema.py from schema/. Do not edit.",
               "// A sample of every record, for the tests: every member present.", '#include "calls/Calls.h"',
               '#include "RecordSamples.h"', "", "using namespace Qt::Literals::StringLiterals;", "",
               "namespace Kestro {", "", "const QList<RecordSample>& recordSamples()", "{",
               "    static const QList<RecordSample> samples = {"]
        for space in [self.spaces["Model"]] + modules:
            for record in declaration_order(space):
                text = json.dumps(record_sample(record), separators=(",", ":"), sort_keys=True)
                required = [m.name for m in record.members if not m.optional]
                # null is a value of a free-form member, so only the others refuse it.
                non_null = [m.name for m in record.members if not m.optional and not is_free_form(m.type)]
                numbers = [m.name for m in record.members
                           if m.type.kind == "primitive" and m.type.name == "number"]
                out.append(f"        {{{cpp_string(record.qualified)}_L1, {cpp_string(text)}_ba, "
                           f"{{{', '.join(cpp_string(r) + '_L1' for r in required)}}}, "
                           f"{{{', '.join(cpp_string(r) + '_L1' for r in non_null)}}}, "
                           f"{{{', '.join(cpp_string(r) + '_L1' for r in numbers)}}}, "
                           f"&roundTrip<Kestro::{record.qualified}>}},")
        out += ["    };", "    return samples;", "}", "", "} // namespace Kestro"]
        return out


def load(paths):
    spaces = {}
    for path in paths:
        with open(path, encoding="utf-8") as handle:
            Parser(tokenize(handle.read(), path)).parse_file(spaces)
    Resolver(spaces).run()
    return spaces


def main(argv):
    if len(argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        spaces = load(argv[2:])
    except SchemaError as error:
        print(f"error: {error}", file=sys.stderr)
        return 1
    import os
    os.makedirs(f"{argv[1]}/calls", exist_ok=True)
    Writer(spaces, argv[1]).write()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
