"""Holds documents against the schema: validate.py SCHEMA DOCUMENT... Ends with 1 where one does not fit."""

import copy
import json
import sys

from jsonschema import Draft202012Validator


def places(validator, document):
    return [f"{'/'.join(map(str, error.absolute_path))}: {error.message[:200]}"
            for error in validator.iter_errors(document)]


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(schema)
    failed = False
    document = None
    for path in sys.argv[2:]:
        with open(path, encoding="utf-8") as file:
            document = json.load(file)
        for place in places(validator, document):
            failed = True
            print(f"{path}: {place}")
    # The validator is none that lets everything pass.
    for key, value in (("version", 2), ("quarterTurns", 4), ("tools", [{}]), ("crop", [0, 0])):
        wrong = copy.deepcopy(document)
        wrong[key] = value
        if not places(validator, wrong):
            failed = True
            print(f"a wrong {key} fits the schema")
    print(f"{len(sys.argv) - 2} documents")
    return failed


sys.exit(main())
