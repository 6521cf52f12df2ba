"""The declaration reader and the naming rules of tools/gen/kestro_schema.py."""

import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "tools", "gen"))
import kestro_schema as gen  # noqa: E402


def load(text):
    with tempfile.NamedTemporaryFile("w", suffix=".kestro.ts", delete=False) as handle:
        handle.write(text)
    try:
        return gen.load([handle.name])
    finally:
        os.unlink(handle.name)


def names(space):
    return [r.name for r in space.order]


class NamingTest(unittest.TestCase):
    def test_nested_records_take_owner_and_member(self):
        spaces = load("""module home {
            interface HomeResult {
              inbox: { count: number; minutes: number };
              routines: { id: string; days: number[] }[];
              kest: { handle: string }[];
              history: { key: string }[];
              activities: { id: string }[];
              deep: { inner: { leaf: { x: string } } };
            }
        }""")
        self.assertEqual(
            names(spaces["home"]),
            ["HomeResult", "HomeResultInbox", "HomeResultRoutine", "HomeResultKest", "HomeResultHistory",
             "HomeResultActivity", "HomeResultDeepInnerLeaf", "HomeResultDeepInner", "HomeResultDeep"])

    def test_a_later_different_shape_takes_a_number(self):
        clash = load("""module app {
            interface First { pageInfo: { url: string } }
            interface FirstPage { info: { count: number } }
            interface Same { item: { id: string } }
            interface Again { list: Same[]; item: { id: string } }
        }""")["app"]
        self.assertIn("FirstPageInfo", names(clash))
        self.assertIn("FirstPageInfo2", names(clash))
        self.assertEqual(clash.records["FirstPageInfo"].members[0].name, "url")
        self.assertEqual(clash.records["FirstPageInfo2"].members[0].name, "count")

    def test_the_same_shape_under_the_same_name_is_one_record(self):
        space = load("""module tasks {
            interface R { a: { x: { id: string } }; ax: { id: string } }
        }""")["tasks"]
        self.assertEqual(names(space).count("RAx"), 1)
        self.assertNotIn("RAx2", names(space))

    def test_a_view_lists_its_own_members_then_the_base(self):
        model = load("""namespace Model {
            interface Base { id: string; flow?: number; title: string }
            interface Full extends Base { flow?: JSONValue; description: string }
        }""")["Model"]
        full = model.records["Full"]
        self.assertEqual([m.name for m in full.members], ["flow", "description", "id", "title"])
        self.assertEqual(full.members[0].type.name, "JSONValue")

    def test_actions_and_optional_arguments(self):
        space = load("""module analytics {
            interface SettingsResult { ok: boolean }
            settings(siteId: string, section?: string): SettingsResult;
            sites;
            clearAction();
        }""")["analytics"]
        settings, sites, clear = space.actions
        self.assertEqual([p.optional for p in settings.params], [False, True])
        self.assertIsNone(sites.params)
        self.assertEqual(gen.result_of(sites, space), "Kestro::JSONValue")
        self.assertEqual(gen.result_of(clear, space), "Kestro::Model::ActionOutcome")
        self.assertEqual(gen.result_of(settings, space), "SettingsResult")

    def test_cpp_keywords_are_escaped_and_json_keys_kept(self):
        self.assertEqual(gen.ident("default"), "default_")
        self.assertEqual(gen.ident("encode"), "encode_")
        self.assertEqual(gen.ident("title"), "title")

    def test_singular(self):
        for plural, one in [("routines", "routine"), ("replies", "reply"), ("watchers", "watcher"),
                            ("addresses", "address"), ("kest", "kest"), ("status", "status"), ("class", "class"), ("analysis", "analysis")]:
            self.assertEqual(gen.singular(plural), one)


class ErrorTest(unittest.TestCase):
    def assertFails(self, text, fragment):
        with self.assertRaises(gen.SchemaError) as caught:
            load(text)
        self.assertIn(fragment, str(caught.exception))

    def test_errors_name_the_line(self):
        self.assertFails("module a {\n  interface R { x: Missing }\n}", ":2: unknown type 'Missing'")
        self.assertFails("module a {\n interface R { x: string }\n interface R { y: string }\n}", "R is declared twice")
        self.assertFails("module a { f(a?: string, b: string); }", "a required argument cannot follow")
        self.assertFails("module a { f(a: string, b: string, c: string, d: string, e: string); }", "at most four")
        self.assertFails("namespace Other { }", "the only namespace is Model")
        self.assertFails("namespace Model { f(); }", "actions belong to a module")
        self.assertFails("module a { interface R { x: string } ", "expected")

    def test_records_that_contain_each_other_need_a_box(self):
        spaces = load("module a { interface Node { kids: Node[] } }")
        with self.assertRaises(gen.SchemaError) as caught:
            gen.declaration_order(spaces["a"])
        self.assertIn("need Indirect<>", str(caught.exception))
        boxed = load("module a { interface Node { kids: Indirect<Node>[] } }")
        self.assertEqual(names(boxed["a"]), ["Node"])
        gen.declaration_order(boxed["a"])


class SchemaTest(unittest.TestCase):
    def test_the_checked_in_schema(self):
        folder = os.path.join(os.path.dirname(__file__), "..", "..", "schema")
        spaces = gen.load(sorted(os.path.join(folder, f) for f in os.listdir(folder) if f.endswith(".kestro.ts")))
        actions = [(s.name, a.name) for s in spaces.values() for a in s.actions]
        self.assertEqual(len(actions), 397)
        self.assertEqual(len(set(actions)), 397)
        for name in ["HomeResult", "HomeResultInbox", "HomeResultRoutine", "HomeResultKest"]:
            self.assertIn(name, spaces["home"].records)
        self.assertIn("VaultHistoryActionResultHistory", spaces["vault"].records)
        self.assertIn("NotificationViewBy", spaces["Model"].records)
        task_view = [m.name for m in spaces["Model"].records["TaskView"].members]
        self.assertEqual(task_view[:10], ["flow", "description", "watchers", "watching", "reactions", "attachments",
                                          "code", "subtasks", "asks", "activity"])
        self.assertEqual(task_view[10:14], ["number", "id", "version", "blocked"])
        for space in spaces.values():
            gen.declaration_order(space)


if __name__ == "__main__":
    unittest.main()
