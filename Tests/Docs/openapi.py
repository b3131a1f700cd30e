#!/usr/bin/env python3
"""
Writes the shared schemas into the description of the service's interface. They are those of the program's other
documents, and the description must be complete in itself.

usage: openapi.py FILE [--check]
"""

import json
import pathlib
import sys

import schemas

MADE = "Made by ./dev docs"
SHARED = "#/components/schemas/"


def here(schema):
    """The schema with its references changed, so that they lead to the description's own definitions."""
    if isinstance(schema, list):
        return [here(each) for each in schema]
    if not isinstance(schema, dict):
        return schema
    return {key: value.replace("#/$defs/", SHARED) if key == "$ref" else here(value)
            for key, value in schema.items() if key not in ("$comment", "$schema", "$id", "$defs")}


def object_with(schema, required, properties, omitted=()):
    """The schema of an object with further members at its beginning."""
    return {"type": "object",
            "required": [*required, *(each for each in schema.get("required", ()) if each not in omitted)],
            "properties": {**properties,
                           **{name: each for name, each in schema["properties"].items() if name not in omitted}},
            **{key: value for key, value in schema.items() if key in ("description", "dependentRequired")}}


def shared():
    """The definitions that other documents have, too, by their names."""
    listed, news, show, one = (schemas.SCHEMAS[name] for name in ("list", "news", "show", "property"))
    made = {**show["$defs"], **news["$defs"], **listed["$defs"]}
    head = {"format": {"description": "In a document that has only this", "$ref": "#/$defs/format"},
            "simulated": listed["properties"]["simulated"]}
    key = {"key": {"description": "Identifies the drive in all documents of the service", "type": "string",
                   "minLength": 1}}
    number = {"number": {"description": "Counts from 1, without gaps", "$ref": "#/$defs/counter"},
              "numberText": {"$ref": "#/$defs/counterText"}}
    # The service also tells of itself.
    kind = news["properties"]["kind"]
    kinds = {"kind": kind | {"enum": [*kind["enum"], "machine-restarted", "service-started", "service-ended"]}}
    made |= {"Objects": object_with(show, [], {}),
             "Property": object_with(one, [], {}),
             "Drive": object_with(made.pop("drive"), ["key"], head | key),
             "Entry": object_with(news | {"properties": news["properties"] | kinds}, ["number"], head | number,
                                  ("format", "simulated"))}
    return {name: {"$comment": MADE, **here(schema)} for name, schema in sorted(made.items())}


def renewed(text):
    """The description with the shared definitions as they are now."""
    document = json.loads(text)
    own = {name: schema for name, schema in document["components"]["schemas"].items()
           if schema.get("$comment") != MADE}
    document["components"]["schemas"] = own | shared()
    return json.dumps(document, indent=2, ensure_ascii=False) + "\n"


def main():
    file = pathlib.Path(sys.argv[1])
    before = file.read_text(encoding="utf-8")
    after = renewed(before)
    if "--check" in sys.argv:
        return f"{file} is out of date; ./dev docs renews it" if before != after else 0
    file.write_text(after, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
