"""All JSON that dpc prints follows docs/dpc.schema.json, and the schema is not so wide that it takes
anything. Usage: json_follows_schema.py DPC SOURCES"""

import copy
import json
import os
import subprocess
import sys
import tempfile

import jsonschema

dpc, sources = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
with open(os.path.join(sources, "docs", "dpc.schema.json"), encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft7Validator.check_schema(schema)

outputs = {
    "check": [
        ["check", "form"], ["check", "good"], ["check", "broken"], ["check", "nowhere"],
        ["check", "form", "nowhere"], ["check", "--machines", "3", "hostile"],
        ["check", "--hosts", "a,a", "--no-rule", "winapi", "many"],
    ],
    "rules": [["check", "--list-rules"]],
    "show": [["show", "good"], ["show", "broken/broken.dpc"], ["show", "--expand", "form"],
             ["show", "blocked/a.dpc"]],
    "diff": [["diff", "good", "changed"], ["diff", "good", "broken/broken.dpc"],
             ["diff", "good", "good"], ["diff", "nowhere", "good"]],
    "roundtrip": [["roundtrip", "form"], ["roundtrip", "changed"], ["roundtrip", "many"],
                  ["roundtrip", "blocked/a.dpc"], ["roundtrip", "nowhere"]],
}


def line(**changes):
    fields = ["Posix", "flush", "prealloc", "10", "64", "1", "1024", "3", "2", "MEMORY",
              "[cfgPath]/out/x.dat", "[cfgPath]/[host].txt", "[cfgPath]/c.csv", "true"]
    for number, text in changes.items():
        fields[int(number[1:]) - 1] = text
    return (";".join(fields) + ";\n").encode("latin-1")


def write(name, content):
    os.makedirs(os.path.dirname(name), exist_ok=True)
    with open(name, "wb") as file:
        file.write(content)


def make_series():
    data = os.path.join(sources, "tests", "data", "dpc", "series")
    subprocess.run(["cp", "-r", os.path.join(data, "."), "."], check=True)
    write("hostile/a.dpc", line(f10="\x1b[2J\x9b\xad", f11="C:\\x", f12="//srv/y") + b"\x7f\n")
    many = b"".join(line(f8="2000000", f10=f"[cfgPath]/s{i}_[iter].dat") for i in range(60))
    write("many/a.dpc", many)
    write("many/a_init.dpc", b"")
    write("blocked/a.dpc", line())
    os.mkdir("blocked/a_init.dpc")
    os.mkdir("blocked/a1.dpc")


def run(arguments):
    done = subprocess.run([dpc, *arguments, "--format=json"], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=False)
    text = done.stdout.decode("utf-8")
    unsafe = [c for c in text if (c < " " and c != "\n") or "\x7f" <= c <= "\x9f" or c == "\xad"]
    assert not unsafe, f"{arguments}: {unsafe} in the output"
    return json.loads(text)


def damaged(value, path=()):
    """Copies of an output with one key too many, and with a value of another type."""
    if isinstance(value, dict):
        yield path, {**value, "unknownKey": 1}
        for key, inner in value.items():
            for place, changed in damaged(inner, path + (key,)):
                yield place, {**value, key: changed}
            yield path + (key,), {**value, key: {"none": None}}
    elif isinstance(value, list):
        for index, inner in enumerate(value[:2]):
            for place, changed in damaged(inner, path + (index,)):
                copied = copy.copy(value)
                copied[index] = changed
                yield place, copied


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    make_series()
    kinds = set()
    for kind, commands in outputs.items():
        part = {"$ref": "#/definitions/" + kind, "definitions": schema["definitions"]}
        validator = jsonschema.Draft7Validator(part)
        whole = jsonschema.Draft7Validator(schema)
        for arguments in commands:
            output = run(arguments)
            validator.validate(output)
            whole.validate(output)
            kinds.update(item["what"] for item in output["notChecked"])
            for place, changed in damaged(output):
                assert not validator.is_valid(changed), f"{arguments}: {place} may be anything"
    os.chdir(sources)
listed = schema["definitions"]["notChecked"]["items"]["properties"]["what"]["enum"]
assert kinds == set(listed), f"never seen: {set(listed) - kinds}"
