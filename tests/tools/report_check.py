"""Reads a page of `qelta report` and compares it with what the tool says: PAGE TOOL SOURCE."""
import array, base64, json, re, subprocess, sys, zlib

page = open(sys.argv[1], encoding="utf-8").read()
tool, source = sys.argv[2:4]
report = json.loads(re.search(r'id="report">(.*?)</script>', page, re.S).group(1))
packed = dict(re.findall(r'id="array-(\d+)">([^<]*)</script>', page))


def decode(place):
    code, size = {"f32": ("f", 4), "i32": ("i", 4), "u32": ("I", 4), "u8": ("B", 1)}[place["type"]]
    planes = zlib.decompress(base64.b64decode(packed[str(place["id"])], validate=True))
    count = place["count"]
    assert len(planes) == count * size
    return array.array(code, bytes(planes[k * count + i] for i in range(count) for k in range(size)))


def run(*arguments):
    text = subprocess.run([tool, *arguments], check=True, capture_output=True, text=True).stdout
    return [json.loads(line) for line in text.splitlines()]


def near(a, b):
    return a == b or a != a and b == "NaN" or abs(a - b) <= 1e-6 * abs(b)


def check_field(ids, field, block):
    name, where = field["name"].split(" ")[0], report["steps"][block["step"]].split(", ")[-1]
    conditions = [f"LABEL={name}"] + where.split("/")
    rows = run("show", source, "--format", "jsonl", *(x for one in conditions for x in ("-w", one)))
    titles = [key for key in rows[0] if key not in ("descriptor", "index", "id")]
    values = {row["id"]: [row[title] for title in titles] for row in rows}
    numbers = decode(block["array"])
    assert len(numbers) == len(ids) * len(titles)
    for i, one in enumerate(ids):
        for k in range(len(titles)):
            assert near(numbers[k * len(ids) + i], values[one][k]), (name, where, one, k)
    for value, extremes in zip(field["values"], block["ranges"]):
        if "rule" not in value:
            column = [row[value["place"]] for row in values.values()]
            assert (extremes[0], extremes[2]) == (min(column), max(column))
            assert values[int(extremes[3])][value["place"]] == max(column)


blocks = run("ls", source, "--format", "jsonl")
names = [field["name"] for field in report["catalogue"]["fields"]]
for (key, kind, records, *_), block in zip(report["blocks"], blocks):
    assert {n: v for n, v in zip(names, key) if v is not None} == block["fields"]
    assert (kind, records) == (block["kind"], block["records"])
assert len(blocks) == len(report["blocks"])
for mesh in report["meshes"]:
    ids, places = decode(mesh["nodeIds"]), decode(mesh["positions"])
    coordinates = {row["id"]: list(row.values())[3:] for row in
                   run("show", source, "-w", "ONF=2", "--format", "jsonl")}
    for i, one in enumerate(ids):
        assert all(near(places[3 * i + k], coordinates[one][k]) for k in range(3))
    for field in mesh["fields"]:
        for block in field["blocks"]:
            check_field(ids, field, block)
print(len(report["meshes"]), "mesh,", len(report["steps"]), "steps,", len(report["series"]), "series")
