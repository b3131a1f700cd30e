"""The schemas of the program's JSON documents, as a check that any test can use."""

import functools
import json
import pathlib

import jsonschema

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "Docs" / "Schemas"
SCHEMAS = {file.stem: json.loads(file.read_text()) for file in sorted(FOLDER.glob("*.json"))}


@functools.cache
def _validator(name):
    store = {(FOLDER / f"{each}.json").as_uri(): schema for each, schema in SCHEMAS.items()}
    resolver = jsonschema.RefResolver((FOLDER / f"{name}.json").as_uri(), SCHEMAS[name], store=store)
    return jsonschema.Draft202012Validator(SCHEMAS[name], resolver=resolver)


def wrong(name, document):
    """What the schema of that name finds wrong with the document, a line each; empty when it fits."""
    return [f"{name}: {'/'.join(map(str, each.absolute_path))}: {each.message[:300]}"
            for each in _validator(name).iter_errors(document)]
