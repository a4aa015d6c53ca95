#!/usr/bin/env python3
"""Compares a .vtu file with what `qelta show` says of the same blocks.

usage: vtu_check.py [--vtk] QELTA SOURCE FILE [CONDITION...]

The conditions select the blocks of the step. Reads the file by itself, or with VTK. --moved SCALE
expects the nodes to be moved by so many times the displacement of the step.
"""
import argparse
import json
import math
import re
import struct
import subprocess
import sys
import xml.etree.ElementTree as xml
import zlib

FORMATS = {"Float64": "d", "Float32": "f", "Int64": "q", "Int32": "i", "UInt8": "B", "String": "c"}
PARTS = {"1": "_imaginary", "2": "_amplitude", "3": "_phase", "4": "_filtered"}
NODE_COUNTS = {3: 2, 5: 3, 9: 4, 10: 4, 12: 8, 13: 6, 21: 3, 22: 6, 23: 8, 24: 10, 25: 20, 26: 15}


def payload(data, at, compressed):
    """The bytes of an array, and where the next one begins."""
    if not compressed:
        (count,) = struct.unpack_from("<Q", data, at)
        return data[at + 8 : at + 8 + count], at + 8 + count
    count, size, last = struct.unpack_from("<QQQ", data, at)
    sizes = struct.unpack_from(f"<{count}Q", data, at + 24)
    at += 24 + 8 * count
    pieces = []
    for i, packed in enumerate(sizes):
        pieces.append(zlib.decompress(data[at : at + packed]))
        assert len(pieces[-1]) == (last if last and i == count - 1 else size)
        at += packed
    return b"".join(pieces), at


def read_plainly(path):
    content = open(path, "rb").read()
    begin = content.index(b'<AppendedData encoding="raw">\n_') + 31
    root = xml.fromstring(content[:begin] + b"</AppendedData></VTKFile>")
    assert root.get("header_type") == "UInt64" and root.get("byte_order") == "LittleEndian"
    compressed = root.get("compressor") == "vtkZLibDataCompressor"
    piece = root.find("UnstructuredGrid/Piece")
    grid = {"points": int(piece.get("NumberOfPoints")), "cells": int(piece.get("NumberOfCells"))}
    data, ends = content[begin:], []
    elements = [("FieldData", e) for e in root.find("UnstructuredGrid/FieldData")]
    for section in piece:
        elements += [(section.tag, e) for e in section]
    for section, element in elements:
        raw, end = payload(data, int(element.get("offset")), compressed)
        ends.append((int(element.get("offset")), end))
        if element.get("type") == "String":
            values = [text.decode() for text in raw.split(b"\0")[:-1]]
        else:
            code = FORMATS[element.get("type")]
            values = struct.unpack(f"<{len(raw) // struct.calcsize(code)}{code}", raw)
        width = int(element.get("NumberOfComponents", 1))
        rows = [values[i : i + width] for i in range(0, len(values), width)]
        names = [element.get(f"ComponentName{i}") for i in range(width)]
        grid.setdefault(section, {})[element.get("Name")] = (rows, names)
    # The arrays lie one behind the other, up to the end of the file.
    ends.sort()
    assert [begin for begin, _ in ends] == [0] + [end for _, end in ends[:-1]]
    assert data[ends[-1][1] :].strip().startswith(b"</AppendedData>")
    return grid


def read_with_vtk(path):
    import vtk

    def arrays(attributes):
        found = {}
        for i in range(attributes.GetNumberOfArrays()):
            array = attributes.GetAbstractArray(i)
            width = array.GetNumberOfComponents()
            if array.IsNumeric():
                rows = [array.GetTuple(k) for k in range(array.GetNumberOfTuples())]
            else:
                rows = [[array.GetValue(k)] for k in range(array.GetNumberOfValues())]
            names = [array.GetComponentName(k) for k in range(width)]
            found[array.GetName()] = (rows, names)
        return found

    errors = []
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.AddObserver("ErrorEvent", lambda *event: errors.append(event))
    reader.SetFileName(path)
    reader.Update()
    assert not errors
    mesh = reader.GetOutput()
    assert mesh.GetNumberOfPoints() == 0 or mesh.GetPointData().GetGlobalIds() is not None
    cells, ends = [], []
    for i in range(mesh.GetNumberOfCells()):
        nodes = mesh.GetCell(i).GetPointIds()
        cells += [[nodes.GetId(k)] for k in range(nodes.GetNumberOfIds())]
        ends.append([len(cells)])
    types = [[mesh.GetCellType(i)] for i in range(mesh.GetNumberOfCells())]
    points = [mesh.GetPoint(i) for i in range(mesh.GetNumberOfPoints())]
    return {"points": len(points), "cells": len(types), "Points": {"Points": (points, [])},
            "Cells": {"connectivity": (cells, []), "offsets": (ends, []), "types": (types, [])},
            "PointData": arrays(mesh.GetPointData()), "CellData": arrays(mesh.GetCellData()),
            "FieldData": arrays(mesh.GetFieldData())}


def show(arguments, conditions):
    command = [arguments.qelta, "show", arguments.source, "--format", "jsonl"]
    for condition in conditions:
        command += ["-w", condition]
    rows = subprocess.run(command, stdout=subprocess.PIPE, check=False).stdout.decode()
    return [json.loads(row) for row in rows.splitlines()]


def number(value):
    return float(value) if isinstance(value, str) else value


def is_same(a, b):
    return a == b or (math.isnan(a) and math.isnan(b))


def fields_of(row):
    """The numbers of a row: name of the field, component names, values."""
    fields = {}
    for title, value in row.items():
        if title not in ("descriptor", "index", "id"):
            field, _, component = title.partition(".")
            names, values = fields.setdefault(field, ([], []))
            names.append(component)
            values.append(value)
    return fields


def expected_arrays(rows):
    """Of the blocks of a step: {array: {id: values}} and the component names."""
    arrays = {}
    for row in rows:
        key = dict(part.split("=", 1) for part in row["descriptor"].split("/"))
        fields = fields_of(row)
        if "ONF" not in key and all(names == [""] for names, _ in fields.values()):
            # Fields that are all alike are the components of one array.
            fields = {"": (list(fields), [values[0] for _, values in fields.values()])}
        for field, (names, values) in fields.items():
            name = key.get("LABEL", "") + PARTS.get(key.get("SUB_LEVEL"), "")
            name += "" if len(fields) == 1 else "_" + field
            names = [{"zx": "XZ"}.get(part, part.upper()) for part in names]
            found = arrays.setdefault(name, (names, {}))
            found[1][row["id"]] = [number(value) for value in values]
    return arrays


def check_mesh(grid, arguments):
    nodes = [int(row[0]) for row in grid["PointData"]["GlobalNodeId"][0]]
    elements = [int(row[0]) for row in grid["CellData"]["GlobalElementId"][0]]
    places = {row["id"]: fields_of(row)["COORDINATES"][1]
              for row in show(arguments, ["ONF=node_coordinates", "LABEL=!"])}
    assert set(places) == set(nodes) and len(nodes) == grid["points"]
    moves = {}
    if arguments.moved:
        step = [text for text in arguments.conditions if not text.startswith("LABEL")]
        moved = show(arguments, ["ONF=displacement,mode_shape"] + step)
        moves = next(iter(expected_arrays(moved).values()))[1]
    for node, point in zip(nodes, grid["Points"]["Points"][0]):
        move = moves.get(node, [0, 0, 0])
        wanted = [x + arguments.moved * u for x, u in zip(places[node], move)]
        assert all(abs(a - b) <= 1e-12 * max(1, abs(b)) for a, b in zip(point, wanted)), node
    topology = {row["id"]: row for row in show(arguments, ["ONF=element_topology", "LABEL=!"])}
    assert set(topology) == set(elements) and len(elements) == grid["cells"]
    references = [row[0] for row in grid["Cells"]["connectivity"][0]]
    begin = 0
    for element, (end,), (kind,) in zip(elements, grid["Cells"]["offsets"][0],
                                        grid["Cells"]["types"][0]):
        assert kind == topology[element]["TYPE"] and end - begin == NODE_COUNTS[kind]
        expected = topology[element]["NODES"]
        # Of a linear wedge the solver's base looks inside, VTK's outside.
        if topology[element]["TYPE"] == 13:
            expected = [expected[i] for i in (0, 2, 1, 3, 5, 4)]
        assert [nodes[i] for i in references[begin:end]] == expected
        begin = end
    for row in show(arguments, ["ONF=element_attributes", "LABEL=!"]):
        for field in ("GROUP", "MATERIAL"):
            value = int(grid["CellData"][field][0][elements.index(row["id"])][0])
            assert grid["FieldData"][field + " names"][0][value][0] == row[field]
    return {"PointData": nodes, "CellData": elements}


def check_values(grid, ids, arguments):
    count = 0
    wanted = expected_arrays(show(arguments, arguments.conditions + ["ONF=!"]) +
                             show(arguments, arguments.conditions + ["ONF=@nodal"]) +
                             show(arguments, arguments.conditions + ["ONF=@element"]))
    for name, (components, values) in wanted.items():
        section = "PointData" if name in grid["PointData"] else "CellData"
        rows, names = grid[section][name]
        assert names == components or components == [""], (name, names, components)
        for owner, row in zip(ids[section], rows):
            expected = values.get(owner, [math.nan] * len(row))
            assert all(is_same(a, b) for a, b in zip(row, expected)), (name, owner, row, expected)
            count += len(row)
    known = {"GlobalNodeId", "GlobalElementId", "GROUP", "MATERIAL"}
    assert {*grid["PointData"], *grid["CellData"]} - known == set(wanted), set(wanted)
    return count


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--vtk", action="store_true")
    parser.add_argument("--moved", type=float, default=0)
    for name in ("qelta", "source", "file"):
        parser.add_argument(name)
    parser.add_argument("conditions", nargs="*")
    arguments = parser.parse_args()
    grid = (read_with_vtk if arguments.vtk else read_plainly)(arguments.file)
    count = check_values(grid, check_mesh(grid, arguments), arguments)
    facts = {name: rows[0][0] for name, (rows, _) in grid["FieldData"].items()}
    print(f"{grid['points']} points, {grid['cells']} cells, {count} values,",
          f"{facts.get('TimeValue')} {facts.get('Step')}")


sys.exit(main())
