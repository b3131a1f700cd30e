#!/usr/bin/env python3
"""
The description of the service's interface is a whole and sound OpenAPI document.

usage: test_openapi.py FILE [unittest arguments]
"""

import copy
import json
import pathlib
import re
import sys
import unittest

import jsonschema

import openapi

FILE = pathlib.Path(sys.argv[1])
METHODS = {"get", "put", "post", "delete", "patch", "head", "options", "trace"}


def places(value, path=()):
    """Every value in a document, with the path to it."""
    yield path, value
    for key, each in value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ():
        yield from places(each, (*path, key))


def references(document):
    return {value for path, value in places(document) if path and path[-1] == "$ref"}


def resolved(document, value):
    """The value, or what it refers to."""
    while isinstance(value, dict) and set(value) == {"$ref"}:
        found = document
        for step in value["$ref"].removeprefix("#/").split("/"):
            found = found[step]
        value = found
    return value


def operation_errors(document, path, item):
    for method, operation in item.items():
        place = f"{method} {path}"
        if method not in METHODS:
            yield f"{place}: no method"
            continue
        for member in ("operationId", "summary", "responses"):
            if not operation.get(member):
                yield f"{place}: no {member}"
        parameters = [resolved(document, each) for each in operation.get("parameters", ())]
        for each in parameters:
            if not each.get("description") or each.get("in") not in ("path", "query", "header") or "schema" not in each:
                yield f"{place}: parameter {each.get('name')} is not complete"
            if (each.get("in") == "path") != (each.get("required") is True):
                yield f"{place}: parameter {each.get('name')} must be required if and only if it is in the path"
        named = [each.get("name") for each in parameters if each.get("in") == "path"]
        if sorted(named) != sorted(re.findall(r"\{(\w+)\}", path)):
            yield f"{place}: its parameters are not those of the path"
        for status, response in operation.get("responses", {}).items():
            response = resolved(document, response)
            if not re.fullmatch(r"[1-5][0-9]{2}|default", status) or not response.get("description"):
                yield f"{place}: answer {status} is not complete"
            if not all("schema" in media for media in response.get("content", {}).values()):
                yield f"{place}: answer {status} has no schema"


def errors(document):
    """What is wrong with a description, one sentence each."""
    if not re.fullmatch(r"3\.1\.\d+", document.get("openapi", "")):
        yield "the version is not 3.1"
    for member in ("title", "version"):
        if not document.get("info", {}).get(member):
            yield f"no {member}"
    defined = {f"#/components/{kind}/{name}" for kind, each in document["components"].items() for name in each
               if kind != "securitySchemes"}
    yield from (f"{each} leads nowhere" for each in references(document) - defined)
    yield from (f"nothing uses {each}" for each in defined - references(document))
    schemes = set(document["components"].get("securitySchemes", ()))
    for path, value in places(document):
        if path and path[-1] == "security" and not {name for each in value for name in each} <= schemes:
            yield f"{path}: no such security scheme"
    names = [each["operationId"] for item in document["paths"].values() for each in item.values()
             if "operationId" in each]
    if len(names) != len(set(names)):
        yield "two operations have one identifier"
    for path, item in document["paths"].items():
        if not path.startswith("/"):
            yield f"{path} is no path"
        yield from operation_errors(document, path, item)
    for path, value in places(document):
        if path and path[-1] == "schema" or path[:-1] == ("components", "schemas"):
            try:
                jsonschema.Draft202012Validator.check_schema(value)
            except jsonschema.SchemaError as error:
                yield f"{path}: {error.message}"


class Description(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = FILE.read_text(encoding="utf-8")
        cls.document = json.loads(cls.text)

    def test_it_is_sound(self):
        self.assertEqual(list(errors(self.document)), [])

    def test_shared_schemas_are_up_to_date(self):
        """`./dev docs` would change nothing"""
        self.assertEqual(openapi.renewed(self.text), self.text)

    def test_every_error_is_a_problem_document(self):
        for path, item in self.document["paths"].items():
            for operation in item.values():
                for status, response in operation["responses"].items():
                    kinds = set(resolved(self.document, response)["content"])
                    self.assertEqual(kinds == {"application/problem+json"}, status != "200", (path, status))

    def test_faults_are_found(self):
        """each fault that is planted in the description is found"""
        planted = {
            "3.1": lambda d: d.update(openapi="3.0.0"),
            "title": lambda d: d["info"].pop("title"),
            "leads nowhere": lambda d: d["components"]["schemas"].pop("counter"),
            "nothing uses": lambda d: d["components"]["schemas"].update(Unused={"type": "object"}),
            "one identifier": lambda d: d["paths"]["/metrics"]["get"].update(operationId="status"),
            "no path": lambda d: d["paths"].update({"metrics": {}}),
            "no method": lambda d: d["paths"]["/metrics"].update(fetch={}),
            "no summary": lambda d: d["paths"]["/metrics"]["get"].pop("summary"),
            "not those of the path": lambda d: d["paths"]["/api/v1/drives/{key}"]["get"].pop("parameters"),
            "must be required": lambda d: d["paths"]["/api/v1/drives/{key}"]["get"]["parameters"][0].pop("required"),
            "no such security scheme": lambda d: d["components"]["securitySchemes"].pop("token"),
            "answer 200 has no schema":
                lambda d: d["paths"]["/api/v1/status"]["get"]["responses"]["200"]["content"]["application/json"].clear(),
            "is not valid under any": lambda d: d["components"]["schemas"]["Status"].update(type="objekt"),
        }
        for message, plant in planted.items():
            with self.subTest(message):
                document = copy.deepcopy(self.document)
                plant(document)
                self.assertTrue(any(message in each for each in errors(document)), list(errors(document)))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
