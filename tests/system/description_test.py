#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""The description of the methods: a valid OpenRPC document whose examples are as it says, and what zorbd
makes of it.

Usage: description_test.py BUILD_FOLDER DESCRIPTION..."""

import json
import pathlib
import re
import subprocess
import sys

import jsonschema

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from npm_package import npm_package  # noqa: E402


def schema_of(folder):
    """Such a package holds its schema as a JavaScript object."""
    script = "const schema = require(process.argv[1]); console.log(JSON.stringify(schema.default || schema))"
    return json.loads(subprocess.run(["node", "-e", script, str(folder)], stdout=subprocess.PIPE, check=True).stdout)


def meta_schema(build):
    """The meta-schema of OpenRPC, which refers to that of JSON Schema."""
    openrpc = schema_of(npm_package(build, "@open-rpc/meta-schema", "1.14.9"))
    json_schema = schema_of(npm_package(build, "@json-schema-tools/meta-schema", "1.8.0"))
    resolver = jsonschema.RefResolver.from_schema(openrpc, store={
        "https://meta.json-schema.tools": json_schema, "https://meta.json-schema.tools/": json_schema})
    return jsonschema.Draft7Validator(openrpc, resolver=resolver)


def resolved(value, document):
    if isinstance(value, list):
        return [resolved(one, document) for one in value]
    if not isinstance(value, dict):
        return value
    if "$ref" in value:
        target = document
        for step in value["$ref"][2:].split("/"):
            target = target[step]
        return resolved(target, document)
    return {key: resolved(one, document) for key, one in value.items()}


def check_examples(method):
    schemas = {param["name"]: param for param in method["params"]}
    for example in method["examples"]:
        given = {param["name"]: param["value"] for param in example["params"]}
        missing = [name for name, param in schemas.items() if param.get("required") and name not in given]
        assert not missing, f"{method['name']}: the example lacks {missing}"
        for name, value in given.items():
            jsonschema.validate(value, schemas[name]["schema"])
        jsonschema.validate(example["result"]["value"], method["result"]["schema"])


def interface_operations():
    idl = pathlib.Path(__file__).resolve().parents[2] / "rmi" / "VarnelRMI.idl"
    return set(re.findall(r"^ *long (\w+)\(", idl.read_text(), re.MULTILINE))


def check_document(document, validator):
    validator.validate(document)
    methods = resolved(document["methods"], document)
    described, operations = {method["name"] for method in methods}, interface_operations()
    assert described == operations, f"not in both rmi/VarnelRMI.idl and the description: {described ^ operations}"
    for method in methods:
        assert method["examples"] and method["errors"], method["name"]
        check_examples(method)


def main():
    build, *files = sys.argv[1:]
    validator = meta_schema(build)
    for file in files:
        check_document(json.loads(pathlib.Path(file).read_text()), validator)
        print(f"{file} is valid")


main()
