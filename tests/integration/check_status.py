#!/usr/bin/env python3
"""Fails when the JSON on the standard input does not follow a schema, or has a field that the schema does not name.

usage: check_status.py SCHEMA
"""

import json
import sys

import jsonschema


def closed(schema):
    """The schema with every object's fields as the only ones: readers take more, a writer has to name them."""
    if isinstance(schema, list):
        return [closed(each) for each in schema]
    if not isinstance(schema, dict):
        return schema
    inner = {name: closed(each) for name, each in schema.items()}
    if isinstance(inner.get("properties"), dict):
        inner["additionalProperties"] = False
    return inner


def main() -> int:
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    document = json.load(sys.stdin)
    errors = list(jsonschema.Draft202012Validator(closed(schema)).iter_errors(document))
    for error in errors:
        print("/".join(map(str, error.absolute_path)), error.message)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
