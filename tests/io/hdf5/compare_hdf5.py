"""compare_hdf5.py FILE.h5 FILE.jsonl: all values of an export, and no others, are what `qelta show`
prints of the database. Knows docs/hdf5.md and nothing else."""

import json
import math
import sys

import h5py


class Maps:
    """What an index of an id type is shown as."""

    NAMED = {"node group", "element group", "property", "material", "design variable", "response",
             "constraint", "surface", "contact pair"}

    def __init__(self, group):
        self.maps = {id_type: self.read(one, id_type) for id_type, one in group.items()}

    def read(self, group, id_type):
        ids = dict(zip(group["index"][:].tolist(), group["id"][:].tolist()))
        if "name" in group and id_type in self.NAMED:
            names = [text_of(name) for name in group["name"][:]]
            ids.update((i, name) for i, name in zip(group["index"][:].tolist(), names) if name)
        return ids

    def show(self, id_type, index):
        if id_type == "record index":
            return index
        return self.maps.get(id_type, {}).get(index, "#%d" % index)


def text_of(value):
    raw = value if isinstance(value, bytes) else bytes(value)
    return raw.decode(errors="replace")


def shown(value):
    if isinstance(value, float) and not math.isfinite(value):
        return "NaN" if math.isnan(value) else "Infinity" if value > 0 else "-Infinity"
    return value


def columns_of(name, field, maps):
    """Titles, and for each the values of all records."""
    id_type = field.attrs.get("id_type", "record index")
    if isinstance(field, h5py.Group):
        offsets, values = field["offsets"][:].tolist(), field["values"][:].tolist()
        lists = [values[a:b] for a, b in zip(offsets, offsets[1:])]
        return {name: [[shown(maps.show(id_type, x)) for x in one] for one in lists]}
    if field.dtype == object:
        return {name: [text_of(value) for value in field[:]]}
    if field.ndim == 2:
        titles = [name + "." + component for component in field.attrs["components"]]
        return {t: [shown(x) for x in field[:, i].tolist()] for i, t in enumerate(titles)}
    return {name: [shown(maps.show(id_type, x)) for x in field[:].tolist()]}


def rows_of(block, key, maps):
    columns = {"index": block["index"][:].tolist()}
    id_type = block.attrs["id_type"]
    columns["id"] = [maps.show(id_type, index) for index in columns["index"]]
    if "id" in block and "name" not in block:
        assert columns["id"] == block["id"][:].tolist(), key
    if "name" in block:
        assert columns["id"] == [text_of(name) for name in block["name"][:]], key
    for name in set(block) - {"index", "id", "name"}:
        columns.update(columns_of(name, block[name], maps))
    for values in zip(*columns.values()):
        yield {"descriptor": key, **dict(zip(columns, values))}


def main(path, listing):
    with h5py.File(path) as file, open(listing, encoding="utf-8", errors="replace") as lines:
        maps = Maps(file["id_maps"])
        found = {}
        for block in file["blocks"].values():
            for row in rows_of(block, block.attrs["key"], maps):
                found[row["descriptor"], row["index"]] = row
        shown_rows = set()
        for line in lines:  # those of a block once for each of its keys
            row = json.loads(line)
            place = row["descriptor"], row["index"]
            shown_rows.add(place)
            if found[place] != row:
                sys.exit("%s\nis not\n%s" % (str(found[place])[:2000], str(row)[:2000]))
        if shown_rows != set(found):
            sys.exit("%d records are not shown" % len(set(found) - shown_rows))


main(*sys.argv[1:])
