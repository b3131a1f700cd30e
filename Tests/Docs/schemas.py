"""The schemas of the program's JSON documents, as a check that any test can use."""

import functools
import json
import pathlib

import jsonschema

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "Docs" / "Schemas"
SCHEMAS = {file.stem: json.loads(file.read_text()) for file in sorted(FOLDER.glob("*.json"))}


def closed(schema):
    """The schema, closed so that an unknown member is an error. A condition ("if") stays open."""
    if isinstance(schema, list):
        return [closed(each) for each in schema]
    if not isinstance(schema, dict):
        return schema
    result = {key: closed(value) for key, value in schema.items()}
    if schema.get("type") == "object" and "properties" in schema:
        result["additionalProperties"] = False
    return result


@functools.cache
def _validator(name):
    return jsonschema.Draft202012Validator(closed(SCHEMAS[name]))


def wrong(name, document):
    """What does not fit this release's schema of that name, one error on each line. Empty when all fits."""
    return [f"{name}: {'/'.join(map(str, each.absolute_path))}: {each.message[:300]}"
            for each in _validator(name).iter_errors(document)]


def fits(name, document):
    """Whether the document fits the schema that users have, which allows members of later releases."""
    return jsonschema.Draft202012Validator(SCHEMAS[name]).is_valid(document)
