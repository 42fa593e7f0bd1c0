"""Every command's JSON, real results and failures, against the kept schema: json_schema_test.py HOST SCHEMA"""

import json
import os
import subprocess
import sys
import tempfile

import jsonschema

HOST, SCHEMA = sys.argv[1:]


def validator_of(definition):
    return jsonschema.Draft202012Validator({"$ref": "#/$defs/" + definition, "$defs": schema["$defs"]})


def run(*arguments):
    ended = subprocess.run([HOST, "--json", *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    try:
        return ended.returncode, json.loads(ended.stdout)
    except json.JSONDecodeError:
        sys.exit(f"{arguments}: not one document but {ended.stdout!r}, {ended.stderr}")


def make_clip(name, *options):
    source = ["-f", "lavfi", "-i", "testsrc2=s=160x128:r=30:d=1", "-f", "lavfi", "-i", "anoisesrc=d=1"]
    subprocess.run(["ffmpeg", "-v", "error", *source, *options, name], check=True)


with open(SCHEMA, encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    os.environ["XDG_DATA_HOME"] = os.path.join(folder, "data")
    make_clip("a.mp4", "-c:v", "libx264", "-c:a", "aac")
    make_clip("b.mkv", "-c:v", "mpeg4", "-c:a", "aac", "-s", "320x240")
    os.mkdir("out")
    for definition, status, arguments in [
        ("info", 0, "info a.mp4 b.mkv"),
        ("thumbnail", 0, "thumbnail a.mp4 -o t --at 0"),
        ("several", 0, "thumbnail a.mp4 b.mkv -o out/ --at 0"),
        ("contact-sheet", 0, "contact-sheet a.mp4 -o s"),
        ("several", 1, "contact-sheet a.mp4 b.mkv /none.mp4 t.jpg -o out/ --rows 1 --no-clobber"),
        ("join", 0, "join a.mp4 b.mkv -o j --dry-run --codec h264"),
        ("join", 0, "join a.mp4 a.mp4 -o j"),
        ("can-concat", 0, "can-concat a.mp4 a.mp4"),
        ("can-concat", 1, "can-concat a.mp4 b.mkv"),
        ("concat", 0, "concat a.mp4 a.mp4 -o c"),
        ("merge", 0, "merge a.mp4 b.mkv -o m --quality low --encoder libx264"),
        ("encode", 0, "encode b.mkv -o e --width 160 --height 128"),
        ("edit", 0, "edit a.mp4 -o cut --start 0 --end 0.5"),
        ("edit", 0, "edit a.mp4 -o cuts --range 0-0.2 --range 0.4-0.6"),
        ("clean", 0, "clean a.mp4 -o quiet"),
        ("tracks", 0, "tracks remove-audio a.mp4 -o silent.mp4"),
        ("doctor", 0, "doctor"),
        ("error", 2, "infos"),
        ("error", 2, "merge a.mp4 --widht 1"),
        ("error", 3, "info none.mp4"),
        ("error", 4, "requests --logged-out"),
        ("error", 3, "concat a.mp4 b.mkv -o x"),
        ("requests", 0, "requests"),
        ("requests", 0, "requests --delete --status complete"),
    ]:
        ended, document = run(*arguments.split())
        assert ended == status, (arguments, ended, document)
        for name in (definition, None):
            validator = validator_of(name) if name else jsonschema.Draft202012Validator(schema)
            for fault in validator.iter_errors(document):
                sys.exit(f"{arguments}: {fault.message} in {json.dumps(document, indent=2)}")
    jobs = [
        ["clean", "a.mp4", "none.mp4", "-o", "out/"],
        ["join", "out/a.mp4", "out/a.mp4", "-o", "twice"],
        ["can-concat", "a.mp4", "b.mkv"],
        ["info", "twice.mp4"],
    ]
    with open("jobs.json", "w", encoding="utf-8") as file:
        json.dump(jobs, file)
    ended, told = run("jobs", "jobs.json")
    validator_of("jobs").validate(told)
    assert ended == 1 and [job["words"] for job in told] == jobs, told
    assert [job["status"] for job in told] == [3, 0, 1, 0], told
    assert len(told[0]["results"]) == 2 and 1900 < told[3]["results"][0][0]["durationMillis"] < 2200, told
    stored = run("requests", "--status", "idle")[1][0]["id"]
    for definition, document in [
        ("process", run("process", stored)[1]),
        ("process", run("process", stored, stored)[1]),
    ]:
        for fault in validator_of("error" if "error" in document else definition).iter_errors(document):
            sys.exit(f"{definition}: {fault.message}")
    with subprocess.Popen([HOST, "--json", "watch"], stdout=subprocess.PIPE, text=True) as watching:
        validator_of("watch").validate(json.loads(watching.stdout.readline()))
        watching.terminate()
